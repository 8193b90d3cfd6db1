#include "tools/ctl/usb/device_list.h"

#include "tools/ctl/usb/device_scan.h"

namespace ctl {

std::vector<DeviceEntry> listDevices()
{
    DeviceScan scan;
    for (DeviceEntry& entry : scan.entries())
        scan.examine(entry);
    return std::move(scan.entries());
}

} // namespace ctl
