#include "report/layout.h"

#include "report/layout_reader.h"

#include <algorithm>

namespace report {

const char* itemName(ReportKind kind)
{
    switch (kind) {
    case ReportKind::kInput:
        return "Input";
    case ReportKind::kOutput:
        return "Output";
    case ReportKind::kFeature:
        break;
    }
    return "Feature";
}

const char* kindName(ReportKind kind)
{
    switch (kind) {
    case ReportKind::kInput:
        return "input";
    case ReportKind::kOutput:
        return "output";
    case ReportKind::kFeature:
        break;
    }
    return "feature";
}

Usage Field::usageAt(uint64_t index) const
{
    if (usages.empty() || (!isVariable() && index >= usageCount()))
        return {};
    const auto after
        = std::ranges::upper_bound(usages, index, {}, [](const UsageRange& r) { return r.index; });
    const UsageRange& range = *(after - 1); // the first one begins at index 0
    const uint64_t last = range.maximum - range.minimum.id;
    const uint64_t step = std::min(index - range.index, last);
    return {range.minimum.page, static_cast<uint16_t>(range.minimum.id + step)};
}

std::optional<uint64_t> Field::indexOf(Usage usage) const
{
    for (const UsageRange& range : usages) {
        const auto& [page, first] = range.minimum;
        if (page == usage.page && first <= usage.id && usage.id <= range.maximum)
            return range.index + (usage.id - first);
    }
    return std::nullopt;
}

bool Field::hasLogicalRange() const
{
    const bool given = logicalMinimum != 0 || logicalMaximum != 0;
    return given && logicalMinimum <= logicalMaximum;
}

uint64_t Field::usageCount() const
{
    if (usages.empty())
        return 0;
    const UsageRange& last = usages.back();
    return last.index + last.maximum - last.minimum.id + 1;
}

std::optional<size_t> Layout::wireSize(ReportKey report) const
{
    const auto found = reportBits.find(report);
    if (found == reportBits.end())
        return std::nullopt;
    return (found->second + 7) / 8 + (usesReportIds ? 1 : 0);
}

std::vector<const Collection*> Layout::collectionPath(const Field& field) const
{
    std::vector<const Collection*> path;
    for (size_t at = field.collection; at != Collection::kNone; at = collections[at].parent)
        path.push_back(&collections[at]);
    std::ranges::reverse(path);
    return path;
}

Layout readLayout(std::span<const uint8_t> descriptor)
{
    LayoutReader reader;
    ItemReader items(descriptor);
    for (Item item{}; items.next(item);)
        reader.handleItem(item);
    return reader.finish();
}

} // namespace report
