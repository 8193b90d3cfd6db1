// The layout of a report in lines. Pure.
#pragma once

#include "report/usage_names.h"

namespace ctl {

// "Input report 3: 3 bytes, the first is the id"
[[nodiscard]] std::string reportTitle(
    const report::Layout& layout, report::Layout::ReportKey report);

// The bits, size, usages and collections of a field, one line for each of its usages. Printable.
[[nodiscard]] std::vector<std::string> fieldRows(
    const report::Layout& layout, const report::Field& field, const report::UsageNames& names);

} // namespace ctl
