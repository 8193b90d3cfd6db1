// Which of a device's input reports the stack can take for a press of a button. Pure.
#pragma once

#include "report/layout.h"

#include <optional>
#include <span>

namespace ctl {

// The stack's reader thread reads into a buffer of this size, hid/CKXHostStackStdHid.cpp.
inline constexpr size_t kStackReadSize = 64;

using Mask = std::span<const uint8_t>; // as in ControlEntry::report

// Whether the report can have the mask's length and all bits of its id.
[[nodiscard]] bool canMatch(
    const report::Layout& layout, report::Layout::ReportKey report, Mask mask);

// The number of the bit that the mask compares, counted from the first bit after the report id.
// None if it compares no bit there.
[[nodiscard]] std::optional<uint64_t> comparedBit(const report::Layout& layout, Mask mask);

} // namespace ctl
