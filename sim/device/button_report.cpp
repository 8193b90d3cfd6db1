#include "sim/device/button_report.h"

#include <cassert>

namespace sim {
namespace {

// What an array contains for a button.
uint64_t arrayValue(const report::Field& field, uint64_t index)
{
    return static_cast<uint64_t>(field.logicalMinimum) + index;
}

// What an array contains if no button is pressed: 0 unless that stands for a button. Then it is the
// value after the last one.
uint64_t nullValue(const report::Field& field)
{
    const bool zeroIsValid = field.logicalMinimum <= 0 && field.logicalMaximum >= 0;
    if (!zeroIsValid || field.usageAt(static_cast<uint64_t>(-field.logicalMinimum)).id == 0)
        return 0;
    return static_cast<uint64_t>(field.logicalMaximum) + 1;
}

} // namespace

ButtonReport::ButtonReport(const report::Layout& layout, uint8_t id)
    : hasId_(layout.usesReportIds)
    , id_(id)
{
    const report::Layout::ReportKey key{report::ReportKind::kInput, id};
    payload_.resize((layout.reportBits.at(key) + 7) / 8);
    for (const size_t index : layout.reportFields.at(key)) {
        const report::Field& field = layout.fields[index];
        if (field.isPadding() || field.isVariable())
            continue;
        for (uint32_t i = 0; i < field.count; ++i)
            write(field, i, nullValue(field));
    }
}

void ButtonReport::switchOn(const Control& button)
{
    const report::Field& field = *button.field;
    assert(field.reportId == id_ && field.kind == report::ReportKind::kInput);
    if (field.isVariable())
        write(field, button.index, 1);
    else // in a full array it replaces the button that was pressed first
        write(field, pressed_[&field]++ % field.count, arrayValue(field, button.index));
}

Bytes ButtonReport::bytes() const
{
    Bytes report = payload_;
    if (hasId_)
        report.insert(report.begin(), id_);
    return report;
}

void ButtonReport::write(const report::Field& field, uint64_t index, uint64_t value)
{
    const uint64_t first = field.bitOffset + index * field.size;
    for (uint32_t i = 0; i < field.size; ++i) {
        const uint64_t at = first + i;
        const auto mask = static_cast<uint8_t>(1u << at % 8);
        payload_[at / 8] &= static_cast<uint8_t>(~mask);
        if (i < 64 && (value >> i & 1))
            payload_[at / 8] |= mask;
    }
}

} // namespace sim
