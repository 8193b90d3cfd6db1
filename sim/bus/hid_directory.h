// What the kernel's HID driver shows of its device below /sys.
#pragma once

#include "sim/device/usb_device_info.h"

#include <filesystem>

namespace sim {

// A directory with the file report_descriptor. It is there while the driver has the interface. Not
// locked.
class HidDirectory {
public:
    // Makes the directory below that of the interface, "1-2:1.0" in `device`. Throws
    // std::filesystem::filesystem_error. Does nothing if the interface is not of class HID.
    HidDirectory(const std::filesystem::path& device, const UsbDeviceInfo& info);

    // Failures are ignored: the device may have been removed.
    void setBound(bool bound) const;

private:
    std::filesystem::path shown_; // empty if the interface is not of class HID
    std::filesystem::path hidden_;
};

} // namespace sim
