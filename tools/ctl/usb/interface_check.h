// Whether this user can open a HID interface.
#pragma once

#include "tools/ctl/usb/device_list.h"
#include "tools/ctl/usb/hid_interface.h"

namespace ctl {

struct InterfaceCheck {
    Access access = Access::kOpen;
    std::string text;         // the reason and the remedy, empty for kOpen
    report::Bytes descriptor; // only if asked for
    int usbError = 0;         // libusb's error, 0 for kOpen
};

// Opens the device's node and looks at the interface's driver, which no program notices.
[[nodiscard]] InterfaceCheck checkNode(const HidInterface& interface);

// Opens and claims the interface as hidapi would and undoes it. The kernel's driver is attached
// again on every path, and also if a signal ends the program meanwhile. The report descriptor is
// read if `wantDescriptor`. Blocks for less than a millisecond, or for some seconds if the device
// does not respond or another instance of this program is checking it.
[[nodiscard]] InterfaceCheck checkByClaim(const HidInterface& interface, bool wantDescriptor);

} // namespace ctl
