// The USB interfaces of HID devices, without opening them.
#pragma once

#include "tools/ctl/usb/usb_handles.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace ctl {

struct HidInterface {
    UsbDeviceRef device;
    int number = 0;
    bool boot = false;          // a keyboard or mouse that needs no report descriptor
    size_t announcedLength = 0; // of the report descriptor, 0 if unknown
    std::string path;           // hidapi's
    std::string node;           // "/dev/bus/usb/001/002", which libusb opens
    std::string deviceSys;      // "/sys/bus/usb/devices/1-2.3"
    std::string sys;            // "/sys/bus/usb/devices/1-2.3/1-2.3:1.0"
};

// The HID interfaces of the device's active configuration in hidapi's order, which has one for each
// alternate setting.
[[nodiscard]] std::vector<HidInterface> hidInterfaces(libusb_device* device);

// Whether the device's active configuration has such an interface.
[[nodiscard]] bool hasInterface(libusb_device* device,
    const std::function<bool(const libusb_interface_descriptor& interface)>& isSuch);

// Whether the interface is one of a keyboard or mouse that needs no report descriptor.
[[nodiscard]] bool isBootInterface(const libusb_interface_descriptor& interface);

} // namespace ctl
