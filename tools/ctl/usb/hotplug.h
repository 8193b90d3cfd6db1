// libusb's messages about devices that come and go.
#pragma once

#include "tools/ctl/usb/usb_handles.h"

#include <span>
#include <vector>

#include <poll.h>

namespace ctl {

// Collects the messages of one libusb context. For one thread.
class Hotplug {
public:
    struct Event {
        bool arrived = false; // else it left
        UsbDeviceRef device;
    };

    // `context` must outlive the object. Throws Failure if there are no messages on this system.
    explicit Hotplug(libusb_context* context);
    ~Hotplug();
    Hotplug(const Hotplug&) = delete;
    Hotplug& operator=(const Hotplug&) = delete;

    // Waits for messages or for something on `others`, whose `revents` it sets. A negative limit is
    // none, as for poll().
    void wait(std::span<pollfd> others, int milliseconds);

    // Those that came since the last call, in their order.
    [[nodiscard]] std::vector<Event> take();

private:
    static int onEvent(
        libusb_context* context, libusb_device* device, libusb_hotplug_event event, void* self);

    libusb_context* const context_;
    libusb_hotplug_callback_handle registration_ = 0;
    std::vector<Event> events_;
};

} // namespace ctl
