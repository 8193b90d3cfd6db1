#include "tools/ctl/explain/report_bit.h"

#include "tools/ctl/explain/phrases.h"
#include "tools/text/printable.h"

#include <bit>

namespace ctl {

std::string bitText(const ReportBit& bit)
{
    return "bit " + std::to_string(bit.number) + " of " + reportName(bit.report);
}

ReportBit FieldValue::firstBit() const
{
    return {{field->kind, field->reportId}, field->bitOffset + uint64_t{field->size} * index};
}

std::optional<FieldValue> valueAt(const report::Layout& layout, const ReportBit& bit)
{
    const auto fields = layout.reportFields.find(bit.report);
    if (fields == layout.reportFields.end())
        return std::nullopt;
    for (const size_t index : fields->second) {
        const report::Field& field = layout.fields[index];
        const uint64_t end = field.bitOffset + uint64_t{field.size} * field.count;
        if (field.bitOffset <= bit.number && bit.number < end)
            return FieldValue{&field, (bit.number - field.bitOffset) / field.size};
    }
    return std::nullopt;
}

std::string contentText(const std::optional<FieldValue>& value, const report::UsageNames& names)
{
    if (!value)
        return "no field of the device";
    const report::Field& field = *value->field;
    if (field.isPadding())
        return "padding";
    if (!field.isVariable())
        return "an array";
    const report::Usage usage = field.usageAt(value->index);
    if (usage == report::Usage{})
        return "a field without a usage";
    const std::string page = text::printable(names.page(usage.page));
    const std::string text = usageName(usage, names);
    return text.starts_with(page) ? text : text + " (page " + page + ')';
}

std::optional<uint64_t> setBit(std::span<const uint8_t> report, size_t skipped)
{
    for (size_t i = skipped; i < report.size(); ++i)
        if (report[i] != 0)
            return (i - skipped) * 8 + static_cast<uint64_t>(std::countr_zero(report[i]));
    return std::nullopt;
}

} // namespace ctl
