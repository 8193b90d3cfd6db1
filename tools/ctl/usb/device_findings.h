// What stands between this user and one device.
#pragma once

#include "tools/ctl/usb/device_list.h"
#include "tools/ctl/usb/finding.h"
#include "tools/ctl/usb/hid_interface.h"

namespace ctl {

// `entry` has been examined with its access. Opens the device if its names are missing.
[[nodiscard]] Findings deviceFindings(const DeviceEntry& entry, const HidInterface& interface);

// The same for a device that was unplugged before it could be examined.
[[nodiscard]] Findings goneFindings();

} // namespace ctl
