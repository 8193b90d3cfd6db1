// A device that a recording stands for: its input reports go through the stack's state machine
// without hardware.
#pragma once

#include "hid/model/TelephonyControls.h"
#include "tools/ctl/meeting/session.h"

#include <memory>

namespace ctl {

class RecordedHost;

// The stack's own decisions about reports, and the window's own meeting. There is no device to take
// output reports, no reader thread and no time.
class RecordedDevice {
public:
    explicit RecordedDevice(KX::TelephonyControls controls);
    ~RecordedDevice();
    RecordedDevice(const RecordedDevice&) = delete;
    RecordedDevice& operator=(const RecordedDevice&) = delete;

    // The journal must outlive the session, and the session must end before the next one.
    [[nodiscard]] std::unique_ptr<Session> open(Journal& journal);

    // An input report arrives. Only while there is a session.
    void receive(const report::Bytes& report);

    // Whether a call is active, with or without a second one ringing.
    [[nodiscard]] bool isOffHook() const;

private:
    friend class RecordedHost;

    const KX::TelephonyControls controls_;
    Journal* journal_ = nullptr; // of the session
    // The session owns the controller, which owns the host. The host is null without a session.
    const HidController* controller_ = nullptr;
    RecordedHost* host_ = nullptr;
};

} // namespace ctl
