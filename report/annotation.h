// A report descriptor item by item, in words. Pure.
#pragma once

#include "report/usage_names.h"

namespace report {

struct AnnotatedItem {
    Item item;
    size_t depth = 0; // number of collections around it; an End Collection has its collection's
    std::string text; // "Usage Page (Telephony)", "Input (Data, Variable, Absolute)"
};

// One element for each item of the descriptor, whose bytes the elements refer to. Takes any bytes,
// in time and memory linear in their number.
[[nodiscard]] std::vector<AnnotatedItem> annotate(
    std::span<const uint8_t> descriptor, const UsageNames& names);

} // namespace report
