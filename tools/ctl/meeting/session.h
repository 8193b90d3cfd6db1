// A meeting on one device, as the window plays it.
#pragma once

#include "app/hidcontroller.h"
#include "tools/ctl/meeting/journal.h"
#include "tools/ctl/usb/device_list.h"

#include <memory>

namespace ctl {

// Throws Failure if the stack would not open this device: no access, or another one with the same
// ids comes first.
void requireUsable(const DeviceEntry& device);

// Owns a controller. Its events and log lines become entries of the journal, at the time when they
// happen: events on the host's reader thread.
class Session {
public:
    // Opens the device. Blocks as HidController::selectDevice() does. Throws Failure with the
    // reason if the device cannot be opened.
    Session(Journal& journal, const DeviceEntry& device);

    // The same with a controller that makes a host of its own. Does not fail.
    Session(Journal& journal, std::unique_ptr<HidController> controller, const QString& id);

    // Sets the device on-hook and closes it, which blocks.
    ~Session() = default;
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    [[nodiscard]] HidController& meeting() { return *controller_; }

private:
    void observe(Journal& journal);

    QObject
        context_; // of the connections: what the controller's destructor causes is observed, too
    std::unique_ptr<HidController> controller_;
};

} // namespace ctl
