// One look at the machine's HID devices.
#pragma once

#include "tools/ctl/usb/device_list.h"
#include "tools/ctl/usb/hid_interface.h"
#include "tools/ctl/usb/interface_check.h"

#include <span>

namespace ctl {

// Holds a libusb context of its own, next to hidapi's. For the thread that uses hidapi.
class DeviceScan {
public:
    // Enumerates with hidapi, which reads the names. Throws Failure if USB cannot be used.
    DeviceScan();

    // As hidapi gives them: with ids, path and names, without descriptor and access.
    [[nodiscard]] std::vector<DeviceEntry>& entries() { return entries_; }

    // Adds the descriptor and what it shows. Does not claim the interface if the descriptor is in
    // sysfs or the interface is that of a keyboard or mouse.
    void readDescriptor(DeviceEntry& entry);

    // Adds the access, too.
    void examine(DeviceEntry& entry);

private:
    void complete(DeviceEntry& entry, bool wantAccess);

    UsbContext context_;
    UsbDeviceList list_;
    std::span<libusb_device*> devices_;
    std::vector<DeviceEntry> entries_;
};

} // namespace ctl
