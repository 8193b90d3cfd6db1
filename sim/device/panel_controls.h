// The buttons and LEDs that a report descriptor describes. Pure.
#pragma once

#include "report/layout.h"
#include "report/usage_names.h"

#include <vector>

namespace sim {

constexpr report::Usage kHookUsage{report::kTelephonyPage, 0x20};
constexpr report::Usage kOffHookLedUsage{report::kLedPage, 0x17};

struct Control {
    std::string name;  // differs from those of the others that were found with it
    std::string label; // for people: "Hook Switch"
    report::Usage usage;
    const report::Field* field = nullptr; // of the layout
    uint64_t index = 0;                   // of a variable field: of the value, else of the usage
};

// Longer lists end here. No device on the market has so many controls.
constexpr size_t kMaxControls = 1024;

// The controls of input reports that are on or off, on the usage pages Telephony, Consumer and
// Button, in the order of the descriptor. Each usage of an array is one; of those that the array
// has by a range, only usages with a name.
[[nodiscard]] std::vector<Control> findButtons(
    const report::Layout& layout, const report::UsageNames& names);

// The controls of output reports on the usage page LED, in the order of the descriptor.
[[nodiscard]] std::vector<Control> findLamps(
    const report::Layout& layout, const report::UsageNames& names);

} // namespace sim
