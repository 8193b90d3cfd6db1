#include "tools/ctl/explain/report_rows.h"

#include "tools/ctl/explain/phrases.h"

#include <algorithm>

namespace ctl {
namespace {

using report::Field;
using report::UsageRange;

constexpr size_t kBitsWidth = 12;
constexpr size_t kSizeWidth = 14;
constexpr size_t kUsagesWidth = 32;
constexpr size_t kMaxPath = 4;   // collections
constexpr size_t kMaxRanges = 3; // of an array

// Values of a field that are next to each other.
struct Values {
    uint64_t first = 0;
    uint64_t count = 0;
};

std::string rangeText(const UsageRange& range, const report::UsageNames& names)
{
    const report::Usage last{range.minimum.page, range.maximum};
    const std::string text = usageName(range.minimum, names);
    return last == range.minimum ? text : text + " to " + usageName(last, names);
}

std::string arrayText(const Field& field, const report::UsageNames& names)
{
    std::string text = "array of ";
    for (size_t i = 0; i < std::min(field.usages.size(), kMaxRanges); ++i)
        text += (i == 0 ? "" : ", ") + rangeText(field.usages[i], names);
    return text + (field.usages.size() > kMaxRanges ? ", ..." : "");
}

// "Headset > Telephony Key Pad": the innermost ones if there are many.
std::string pathText(
    const report::Layout& layout, const Field& field, const report::UsageNames& names)
{
    std::string text;
    size_t at = field.collection;
    for (size_t i = 0; at != report::Collection::kNone && i < kMaxPath; ++i) {
        const report::Collection& collection = layout.collections[at];
        text.insert(0, collectionName(collection, names) + (text.empty() ? "" : " > "));
        at = collection.parent;
    }
    return at == report::Collection::kNone ? text : "... > " + text;
}

std::string rowOf(
    const Field& field, Values values, const std::string& what, const std::string& path)
{
    const uint64_t first = field.bitOffset + values.first * field.size;
    const uint64_t bits = values.count * field.size;
    const std::string where
        = std::to_string(first) + (bits > 1 ? ".." + std::to_string(first + bits - 1) : "");
    const std::string size = (values.count == 1 ? "" : std::to_string(values.count) + " x ")
        + counted(field.size, "bit");
    std::string flags;
    if (field.isConstant() && !field.isPadding())
        flags += ", constant";
    if (field.flags & Field::kRelative && !field.isPadding())
        flags += ", relative";
    const std::string row = padded(where, kBitsWidth) + padded(size, kSizeWidth);
    return path.empty() ? row + what + flags : row + padded(what + flags, kUsagesWidth) + path;
}

} // namespace

std::string reportTitle(const report::Layout& layout, report::Layout::ReportKey report)
{
    const std::string name = report.id == 0 ? report::itemName(report.kind) + std::string(" report")
                                            : reportName(report);
    return name + ": " + counted(layout.wireSize(report).value_or(0), "byte")
        + (layout.usesReportIds ? " with the id" : "");
}

std::vector<std::string> fieldRows(
    const report::Layout& layout, const Field& field, const report::UsageNames& names)
{
    const std::string path = pathText(layout, field, names);
    const Values all{0, field.count};
    if (field.count == 0)
        return {};
    if (field.isPadding())
        return {rowOf(field, all, "padding", "")};
    if (field.usages.empty())
        return {rowOf(field, all, "no usage", path)};
    if (!field.isVariable())
        return {rowOf(field, all, arrayText(field, names), path)};
    std::vector<std::string> rows;
    for (size_t i = 0; i < field.usages.size() && field.usages[i].index < field.count; ++i) {
        // The last usage counts for the rest of the values.
        const bool isLast = i + 1 == field.usages.size();
        const uint64_t end = isLast ? field.count : field.usages[i + 1].index;
        const uint64_t first = field.usages[i].index;
        const Values values{first, std::min<uint64_t>(end, field.count) - first};
        rows.push_back(rowOf(field, values, rangeText(field.usages[i], names), path));
    }
    return rows;
}

} // namespace ctl
