// The lamps of a device and the reports that switch them. Pure.
#pragma once

#include "report/bytes.h"
#include "report/usage_names.h"

#include <string_view>
#include <vector>

namespace ctl {

struct Lamp {
    std::string name; // as the user writes it: "off-hook"
    report::Usage usage;
    report::Bytes
        on; // output report as hidapi takes it: this lamp on, the others of the report off
    report::Bytes off; // the same with all off
};

// The name of an LED usage: that of the usage tables in lower case with hyphens, but always
// "off-hook", "mute", "ring" and "hold" for the lamps of a call.
[[nodiscard]] std::string lampName(report::Usage usage, const report::UsageNames& names);

// The LED usages in output reports, in the order of the descriptor, each once. Without those that
// cannot be switched off.
[[nodiscard]] std::vector<Lamp> lampsOf(
    const report::Layout& layout, const report::UsageNames& names);

// Whether any device may have a lamp of this name.
[[nodiscard]] bool isLampName(std::string_view name, const report::UsageNames& names);

} // namespace ctl
