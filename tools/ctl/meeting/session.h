// A meeting on one device, as the window plays it.
#pragma once

#include "tools/ctl/meeting/event_tap.h"
#include "tools/ctl/usb/device_list.h"

#include <memory>

namespace ctl {

// Throws Failure if the stack would not open this device: no access, or another one with the same
// ids comes first.
void requireUsable(const DeviceEntry& device);

// Owns a controller. Its events and log lines become entries of the journal when they happen:
// events on the host's reader thread. One at a time in a process.
class Session {
public:
    // Opens the device. Blocks as HidController::selectDevice() does. Throws Failure with the
    // reason if the device cannot be opened.
    Session(Journal& journal, const DeviceEntry& device);

    // The same with other hosts. Does not fail.
    Session(Journal& journal, HostFunctions functions, const QString& id);

    // Switches the mute lamp off, sets the device on-hook and closes it, which blocks.
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    [[nodiscard]] HidController& meeting() { return *controller_; }

private:
    // The first two outlive the controller, so that what its destructor causes is observed, too.
    QObject context_; // of the connection to the log
    EventTap tap_;
    const std::unique_ptr<HidController> controller_;
};

} // namespace ctl
