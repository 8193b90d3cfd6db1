#include "tools/ctl/explain/mask_match.h"

#include "tools/ctl/explain/report_bit.h"

#include <algorithm>

namespace ctl {

using report::Layout;

// The rules are those of KX::Matches(). The first byte on the wire is the id, whether or not the
// mask begins with one.
bool canMatch(const Layout& layout, Layout::ReportKey report, Mask mask)
{
    const std::optional<size_t> size = layout.wireSize(report);
    if (report.kind != report::ReportKind::kInput || !size || mask.empty()
        || std::min(*size, kStackReadSize) != mask.size())
        return false;
    return !layout.usesReportIds || (report.id & mask.front()) == mask.front();
}

std::optional<uint64_t> comparedBit(const Layout& layout, Mask mask)
{
    return setBit(mask, layout.usesReportIds ? 1 : 0);
}

} // namespace ctl
