// What follows from a device's controls in a meeting. Pure.
#pragma once

#include "tools/ctl/explain/control_map.h"

namespace ctl {

// Sentences that are true for this device. Printable. `layout` is that of the device.
[[nodiscard]] std::vector<std::string> meetingConsequences(
    const ControlMap& map, const report::Layout& layout, const report::UsageNames& names);

} // namespace ctl
