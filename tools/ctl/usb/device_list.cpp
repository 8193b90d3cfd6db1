#include "tools/ctl/usb/device_list.h"

#include "tools/ctl/usb/device_scan.h"

namespace ctl {

std::vector<DeviceEntry> listDevices()
{
    const UsbContext context = startUsb();
    DeviceScan scan(context.get());
    for (DeviceEntry& entry : scan.entries())
        scan.complete(entry, Detail::kDescriptorAndAccess);
    return std::move(scan.entries());
}

} // namespace ctl
