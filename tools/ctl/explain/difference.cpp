#include "tools/ctl/explain/difference.h"

#include "tools/ctl/explain/phrases.h"
#include "tools/text/printable.h"

#include <algorithm>
#include <bit>
#include <cassert>

namespace ctl {
namespace {

using report::Layout;
using report::ReportKind;

// The stack's reader thread reads into a buffer of this size, hid/CKXHostStackStdHid.cpp.
constexpr size_t kStackReadSize = 64;

std::optional<uint64_t> setBit(const KX::Bytes& found)
{
    const auto byte
        = std::find_if(found.begin() + 1, found.end(), [](uint8_t b) { return b != 0; });
    if (byte == found.end())
        return std::nullopt;
    return static_cast<uint64_t>(byte - found.begin() - 1) * 8
        + static_cast<uint64_t>(std::countr_zero(*byte));
}

Remark noBit(ReportKind kind)
{
    return {"noBit",
        std::string("The field has no bits for the stack, because its Report Size is 0. ")
            + (kind == ReportKind::kInput ? "Every report of the mask's length and id matches."
                                          : "The report that the stack sends sets nothing.")};
}

Remark otherLength(Layout::ReportKey report, size_t stackSize, size_t deviceSize)
{
    return {"otherLength",
        "For the stack, " + reportName(report) + " has " + counted(stackSize, "byte")
            + " after the id instead of " + std::to_string(deviceSize) + ". "
            + (report.kind == ReportKind::kInput
                    ? "A report of another length never matches."
                    : "The device may refuse the report or ignore a part of it.")};
}

Remark longReport(size_t size)
{
    return {"longReport",
        "The mask has " + counted(size, "byte") + ". The stack reads no more than "
            + std::to_string(kStackReadSize) + " bytes of a report, so none matches."};
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
    if (const std::optional<uint64_t> bit = setBit(found))
        addBitNotes(control, {report, *bit}, notes);
    else
        notes.push_back(noBit(control.kind));
    addLengthNotes(report, found, notes);
    return notes;
}

void DifferenceFinder::addBitNotes(const Control& control, const Bit& bit, Notes& notes) const
{
    const std::optional<Place> content = placeAt(bit);
    if (content && !content->field->isVariable() && !content->field->isConstant()) {
        notes.push_back({"arrayField",
            "The stack uses " + bitText(bit) + ", which belongs to the array at "
                + offsetText(content->field->offset)
                + ". Its values are numbers of elements, not single bits."});
        return;
    }
    const std::vector<Place> places = placesOf(control);
    const auto right = std::ranges::find(places, bit, &Place::firstBit);
    const auto other = std::ranges::find_if(places,
        [&](const Place& place) { return place.firstBit() != bit && !place.field->isConstant(); });
    if (right != places.end())
        addPlaceNotes(*right, notes);
    const std::string stack = "The stack uses " + bitText(bit) + ", which is " + contentOf(content);
    if (right == places.end() && other == places.end())
        notes.push_back({"otherUsage", stack + '.'});
    else if (right == places.end())
        notes.push_back({other->firstBit().report == bit.report ? "otherBit" : "otherReport",
            stack + ". The control is " + bitText(other->firstBit()) + '.'});
    else if (other != places.end())
        notes.push_back({"alsoElsewhere",
            "The control is also " + bitText(other->firstBit()) + ", which the stack ignores."});
}

// For a place where the stack and the descriptor agree.
void DifferenceFinder::addPlaceNotes(const Place& place, Notes& notes) const
{
    const report::Field& field = *place.field;
    if (field.isConstant())
        notes.push_back({"constantField",
            std::string("The field is constant. ")
                + (field.kind == ReportKind::kInput
                        ? "A device need not report a press in it, but the stack uses it."
                        : "A device need not act on it, but the stack uses it.")});
    if (field.size > 1)
        notes.push_back({"severalBits",
            "The control has " + counted(field.size, "bit")
                + ". The stack uses only the lowest one."});
    const auto path = layout_.collectionPath(field);
    const auto isHeadset = [](const report::Collection* collection) {
        return collection->usage == report::Usage{kTelephonyPage, kHeadset};
    };
    if (std::ranges::none_of(path, isHeadset))
        notes.push_back({"otherCollection",
            "It is in the collection "
                + (path.empty() ? "of no usage" : collectionName(*path.front(), names_))
                + ", which the stack takes for a Headset collection."});
}

void DifferenceFinder::addLengthNotes(
    Layout::ReportKey report, const KX::Bytes& found, Notes& notes) const
{
    const auto bits = layout_.reportBits.find(report);
    const size_t stackSize = found.size() - 1;
    const size_t deviceSize = bits == layout_.reportBits.end() ? stackSize : (bits->second + 7) / 8;
    if (deviceSize != stackSize)
        notes.push_back(otherLength(report, stackSize, deviceSize));
    const bool hasId = report.id != 0;
    if (report.kind == ReportKind::kInput && stackSize + (hasId ? 1 : 0) > kStackReadSize)
        notes.push_back(longReport(stackSize + (hasId ? 1 : 0)));
}

std::vector<DifferenceFinder::Place> DifferenceFinder::placesOf(const Control& control) const
{
    std::vector<Place> places;
    for (const report::Field& field : layout_.fields) {
        if (field.kind != control.kind || !field.isVariable())
            continue;
        for (const report::UsageRange& range : field.usages) {
            const bool contains = range.minimum.page == control.usage.page
                && range.minimum.id <= control.usage.id && control.usage.id <= range.maximum;
            const uint64_t index = range.index + control.usage.id - range.minimum.id;
            if (contains && index < field.count)
                places.push_back({&field, index});
        }
    }
    return places;
}

std::optional<DifferenceFinder::Place> DifferenceFinder::placeAt(const Bit& bit) const
{
    const auto fields = layout_.reportFields.find(bit.report);
    if (fields == layout_.reportFields.end())
        return std::nullopt;
    for (const size_t index : fields->second) {
        const report::Field& field = layout_.fields[index];
        const uint64_t end = field.bitOffset + uint64_t{field.size} * field.count;
        if (field.bitOffset <= bit.number && bit.number < end)
            return Place{&field, (bit.number - field.bitOffset) / field.size};
    }
    return std::nullopt;
}

std::string DifferenceFinder::contentOf(const std::optional<Place>& place) const
{
    if (!place)
        return "no field of the device";
    const report::Usage usage = place->field->usageAt(place->index);
    if (usage == report::Usage{})
        return place->field->isConstant() ? "padding" : "a field without a usage";
    return usageName(usage, names_) + " (page " + text::printable(names_.page(usage.page)) + ')';
}

std::string DifferenceFinder::bitText(const Bit& bit)
{
    return "bit " + std::to_string(bit.number) + " of " + reportName(bit.report);
}

DifferenceFinder::Bit DifferenceFinder::Place::firstBit() const
{
    return {{field->kind, field->reportId}, field->bitOffset + uint64_t{field->size} * index};
}

} // namespace ctl
