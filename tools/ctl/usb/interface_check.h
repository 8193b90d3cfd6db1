// Whether this user can open a HID interface, found by opening it.
#pragma once

#include "tools/ctl/usb/device_list.h"
#include "tools/ctl/usb/hid_interface.h"

namespace ctl {

// How far a check goes.
enum class Depth {
    kNode,  // opens the device's node, which nobody notices
    kClaim, // also takes the interface from the kernel's driver and gives it back
};

struct InterfaceCheck {
    Access access = Access::kOpen;
    std::string text;         // the reason and the remedy, empty for kOpen
    report::Bytes descriptor; // only with kClaim, and only if asked for
    int usbError = 0;         // libusb's error, 0 for kOpen
};

// Opens the interface as hidapi would and undoes it. The kernel's driver is attached again on every
// path, and also if a signal ends the program meanwhile. With kClaim the report descriptor is read
// if `wantDescriptor`. Blocks for less than a millisecond, or for some seconds if the device does
// not respond.
[[nodiscard]] InterfaceCheck checkInterface(
    const HidInterface& interface, Depth depth, bool wantDescriptor);

} // namespace ctl
