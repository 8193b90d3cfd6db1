// What is done with report templates and input masks: byte strings laid out like a report as
// hidapi exchanges it, report id first, with the bits of one control set. Pure.
#pragma once

#include "hid/model/Bytes.h"

#include <span>

namespace KX {

// The report with every control off: all bytes behind the report id are 0. A template of fewer
// than 2 bytes stays as it is.
[[nodiscard]] Bytes Cleared(Bytes report);

// Whether both are non-empty and belong to the same report id.
[[nodiscard]] bool ShareReport(const Bytes& first, const Bytes& second);

// `first` with the bits of `second` when they share a report, else `first` alone.
[[nodiscard]] Bytes Combined(Bytes first, const Bytes& second);

// Whether the report has the mask's length and all of its bits. The report id is compared the same
// way, by inclusion, on purpose: a report of id 3 matches a mask of id 1.
[[nodiscard]] bool Matches(const Bytes& mask, std::span<const uint8_t> report);

} // namespace KX
