// What the kernel's HID driver shows of its device below /sys.
#pragma once

#include "sim/device/usb_device_info.h"

#include <filesystem>
#include <string>

namespace sim {

// A directory with the file report_descriptor, which is there while the driver has the interface,
// and the interface's link to the driver. Not locked.
class HidDirectory {
public:
    // Makes the directory below that of the interface, "1-2:1.0" in `device`. Throws
    // std::filesystem::filesystem_error. Does nothing if the interface is not of class HID.
    HidDirectory(const std::filesystem::path& device, const UsbDeviceInfo& info,
        const InterfaceInfo& interface);

    // Takes "usbhid", "usbfs", or null if the interface has no driver. Failures are ignored: the
    // device may have been removed.
    void setDriver(const char* name);

private:
    std::string driver_;
    std::filesystem::path shown_; // empty if the interface is not of class HID
    std::filesystem::path hidden_;
};

} // namespace sim
