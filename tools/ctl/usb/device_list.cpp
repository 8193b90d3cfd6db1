#include "tools/ctl/usb/device_list.h"

#include "tools/ctl/usb/device_scan.h"

namespace ctl {

std::vector<DeviceEntry> listDevices()
{
    const UsbContext context = startUsb();
    std::vector<DeviceEntry> entries;
    for (ScannedDevice& device : scanDevices(context.get())) {
        examine(device, Detail::kUnclaimed);
        entries.push_back(std::move(device.entry));
    }
    return entries;
}

} // namespace ctl
