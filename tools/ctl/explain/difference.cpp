#include "tools/ctl/explain/difference.h"

#include "tools/ctl/explain/mask_match.h"
#include "tools/ctl/explain/phrases.h"

#include <algorithm>
#include <cassert>

namespace ctl {
namespace {

using report::Layout;
using report::ReportKind;

Remark noBit(ReportKind kind)
{
    return {"no-bit",
        std::string("The field has no bits for Kelprobe, because its Report Size is 0. ")
            + (kind == ReportKind::kInput ? "Every report of the mask's length and id matches."
                                          : "The report that Kelprobe sends sets nothing.")};
}

Remark constantField(ReportKind kind)
{
    return {"constant-field",
        std::string("Its field is constant: the device need not ")
            + (kind == ReportKind::kInput ? "report a press in it." : "light an LED for it.")
            + " Kelprobe uses it all the same."};
}

// Sizes with the id, if there is one.
Remark otherLength(Layout::ReportKey report, size_t stackSize, size_t deviceSize)
{
    return {"other-length",
        "For Kelprobe, " + reportName(report) + " has " + counted(stackSize, "byte")
            + (report.id == 0 ? " without an id" : " with the id") + " instead of "
            + std::to_string(deviceSize) + ". "
            + (report.kind == ReportKind::kInput
                    ? "A report of another length never matches."
                    : "The device may refuse the report or ignore a part of it.")};
}

Remark longReport(size_t size)
{
    return {"long-report",
        "The mask has " + counted(size, "byte") + ". Kelprobe reads no more than "
            + std::to_string(kStackReadSize) + " bytes of a report, so none matches."};
}

bool isHeadset(const report::Collection* collection)
{
    return collection->usage == kHeadsetUsage;
}

} // namespace

DifferenceFinder::DifferenceFinder(const Layout& layout, const report::UsageNames& names)
    : layout_(layout)
    , names_(names)
{
}

std::vector<Remark> DifferenceFinder::between(const Control& control, const KX::Bytes& found) const
{
    assert(!found.empty());
    const Layout::ReportKey report{control.kind, found.front()};
    Notes notes;
    if (const std::optional<uint64_t> bit = setBit(found, 1))
        addBitNotes(control, {report, *bit}, notes);
    else
        notes.push_back(noBit(control.kind));
    addLengthNotes(report, found, notes);
    return notes;
}

void DifferenceFinder::addBitNotes(const Control& control, const ReportBit& bit, Notes& notes) const
{
    const std::optional<FieldValue> content = valueAt(layout_, bit);
    if (content && !content->field->isVariable() && !content->field->isConstant()) {
        notes.push_back({"array-field",
            "Kelprobe uses " + bitText(bit) + ", which belongs to the array at "
                + offsetText(content->field->offset)
                + ". Its values are numbers of elements, not single bits."});
        return;
    }
    const std::vector<FieldValue> values = valuesOf(control);
    const auto right = std::ranges::find(values, bit, &FieldValue::firstBit);
    const auto other = std::ranges::find_if(values, [&](const FieldValue& value) {
        return value.firstBit() != bit && !value.field->isConstant();
    });
    if (right != values.end())
        addFieldNotes(*right->field, notes);
    const std::string stack
        = "Kelprobe uses " + bitText(bit) + ", which is " + contentText(content, names_);
    if (right == values.end() && other == values.end())
        notes.push_back({"other-usage", stack + '.'});
    else if (right == values.end())
        notes.push_back({other->firstBit().report == bit.report ? "other-bit" : "other-report",
            stack + ". The control is " + bitText(other->firstBit()) + '.'});
    else if (other != values.end())
        notes.push_back({"also-elsewhere",
            "The control is also " + bitText(other->firstBit()) + ". What Kelprobe uses is "
                + bitText(bit) + '.'});
}

// For a field where the stack and the descriptor agree.
void DifferenceFinder::addFieldNotes(const report::Field& field, Notes& notes) const
{
    if (field.isConstant())
        notes.push_back(constantField(field.kind));
    if (field.size > 1)
        notes.push_back({"several-bits",
            "The control has " + counted(field.size, "bit")
                + ". Kelprobe uses only the lowest one."});
    const auto path = layout_.collectionPath(field);
    if (!path.empty() && std::ranges::none_of(path, isHeadset))
        notes.push_back({"other-collection",
            "It is in the collection " + collectionName(*path.front(), names_)
                + ", which Kelprobe takes for a Headset collection."});
}

void DifferenceFinder::addLengthNotes(
    Layout::ReportKey report, const KX::Bytes& found, Notes& notes) const
{
    const size_t stackSize = report.id == 0 ? found.size() - 1 : found.size();
    const size_t deviceSize = layout_.wireSize(report).value_or(stackSize);
    if (deviceSize != stackSize)
        notes.push_back(otherLength(report, stackSize, deviceSize));
    if (report.kind == ReportKind::kInput && stackSize > kStackReadSize)
        notes.push_back(longReport(stackSize));
}

std::vector<FieldValue> DifferenceFinder::valuesOf(const Control& control) const
{
    std::vector<FieldValue> values;
    for (const report::Field& field : layout_.fields) {
        if (field.kind != control.kind || !field.isVariable())
            continue;
        for (const report::UsageRange& range : field.usages) {
            if (!contains(range, control.usage))
                continue;
            const uint64_t index = range.index + control.usage.id - range.minimum.id;
            if (index < field.count)
                values.push_back({&field, index});
        }
    }
    return values;
}

} // namespace ctl
