// Operations on report templates and input masks. Both are laid out like a report as hidapi
// exchanges it, report id first, with the bits of one control set. Pure.
#pragma once

#include "hid/model/Bytes.h"

#include <span>

namespace KX {

// The report with every control off: all bytes after the report id are 0. A template of fewer than
// 2 bytes stays as it is.
[[nodiscard]] Bytes Cleared(Bytes report);

// Whether both are non-empty and have the same report id.
[[nodiscard]] bool ShareReport(const Bytes& first, const Bytes& second);

// `first` with the bits of `second` added when they share a report, else `first` alone.
[[nodiscard]] Bytes Combined(Bytes first, const Bytes& second);

// Whether the report has the mask's length and all of the mask's bits. This includes the report id,
// which is deliberate: a report with id 3 matches a mask with id 1.
[[nodiscard]] bool Matches(const Bytes& mask, std::span<const uint8_t> report);

} // namespace KX
