// What stands between this user and one device.
#pragma once

#include "tools/ctl/doctor/finding.h"
#include "tools/ctl/usb/device_scan.h"

namespace ctl {

// `device` has been examined with its access. Opens it again and reads its names, which blocks for
// some seconds if it does not respond.
[[nodiscard]] Findings deviceFindings(const ScannedDevice& device);

} // namespace ctl
