// The device that the user means, among those of a scan.
#pragma once

#include "tools/ctl/usb/device_scan.h"

namespace ctl {

// As chooseDevice(), but the entry is not yet complete. Belongs to `scan`.
[[nodiscard]] DeviceEntry& chooseEntry(DeviceScan& scan, const std::optional<std::string>& choice);

} // namespace ctl
