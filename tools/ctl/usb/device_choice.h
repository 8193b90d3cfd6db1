// The device that the user means, among those of a scan.
#pragma once

#include "tools/ctl/usb/device_scan.h"

namespace ctl {

// As chooseDevice(), but the device is not yet examined. It is one of `devices`.
[[nodiscard]] ScannedDevice& choose(
    std::vector<ScannedDevice>& devices, const std::optional<std::string>& choice);

} // namespace ctl
