// The USB interface of a HID device, without opening it.
#pragma once

#include "report/bytes.h"
#include "tools/ctl/usb/usb_handles.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ctl {

struct HidInterface {
    UsbDeviceRef device;
    int number = 0;
    bool boot = false;          // a keyboard or mouse that also works without a report descriptor
    size_t announcedLength = 0; // of the report descriptor, 0 if unknown

    // "/dev/bus/usb/001/002", which libusb opens.
    [[nodiscard]] std::filesystem::path node() const;
    // "/sys/bus/usb/devices/1-2.3".
    [[nodiscard]] std::filesystem::path deviceDirectory() const;
    // "/sys/bus/usb/devices/1-2.3/1-2.3:1.0". Empty if the device has gone.
    [[nodiscard]] std::filesystem::path directory() const;
};

// The HID interfaces of the device's active configuration, one for each alternate setting.
[[nodiscard]] std::vector<HidInterface> hidInterfaces(libusb_device* device);

// Whether the device's active configuration has an interface of that class.
[[nodiscard]] bool hasInterface(libusb_device* device, libusb_class_code interfaceClass);

// The interface among those of `devices` that hidapi names `path`. No value if the device was
// unplugged.
[[nodiscard]] std::optional<HidInterface> findInterface(
    std::span<libusb_device* const> devices, const std::string& path);

} // namespace ctl
