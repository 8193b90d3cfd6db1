// One look at the machine's HID devices. All functions are for the thread that uses hidapi.
#pragma once

#include "tools/ctl/usb/device_list.h"
#include "tools/ctl/usb/hid_interface.h"
#include "tools/ctl/usb/interface_check.h"

#include <span>

namespace ctl {

// Starts hidapi and makes a libusb context next to hidapi's. Throws Failure if USB cannot be used.
[[nodiscard]] UsbContext startUsb();

// The devices with these ids, 0 for any, as hidapi gives them: with ids, path and names, without
// descriptor and access. hidapi asks each device for its names. It waits at most 1 s for each
// transfer, and a name takes up to three transfers.
[[nodiscard]] std::vector<DeviceEntry> enumerateHid(uint16_t vendorId = 0, uint16_t productId = 0);

enum class Detail { kDescriptor, kDescriptorAndAccess };

// Completes an entry of enumerateHid(). With kDescriptor the interface is only opened and claimed
// if the descriptor is not in sysfs. The interface of a keyboard or mouse is never claimed.
void examine(DeviceEntry& entry, const HidInterface& interface, Detail detail);

// The devices that are present at one moment.
class DeviceScan {
public:
    // `context` is of startUsb() and must outlive the object.
    explicit DeviceScan(libusb_context* context);

    // From enumerateHid().
    [[nodiscard]] std::vector<DeviceEntry>& entries() { return entries_; }

    // No value if the device was unplugged meanwhile.
    [[nodiscard]] std::optional<HidInterface> interfaceOf(const DeviceEntry& entry) const;

    // Completes one of the entries, also that of a device that was unplugged.
    void complete(DeviceEntry& entry, Detail detail) const;

private:
    UsbDeviceList list_;
    std::span<libusb_device*> devices_;
    std::vector<DeviceEntry> entries_;
};

} // namespace ctl
