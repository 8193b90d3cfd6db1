#include "tools/ctl/explain/absence.h"

#include "tools/ctl/explain/phrases.h"

#include <algorithm>
#include <cassert>

namespace ctl {
namespace {

std::optional<size_t> findLongItem(std::span<const uint8_t> descriptor)
{
    const auto items = report::splitItems(descriptor);
    const auto found = std::ranges::find_if(items, &report::Item::isLong);
    return found == items.end() ? std::nullopt : std::optional(found->offset);
}

// The usages that are not the first of a set between delimiters, which count for no field.
std::vector<report::UsageRange> findAlternatives(std::span<const uint8_t> descriptor)
{
    std::vector<report::UsageRange> found;
    uint32_t page = 0;
    bool isInSet = false;
    bool isFirst = false;
    for (const report::Item& item : report::splitItems(descriptor)) {
        if (item.tag == report::ItemTag::kUsagePage) {
            page = item.value;
        } else if (item.tag == report::ItemTag::kDelimiter) {
            isInSet = isFirst = item.value == 1;
        } else if (item.tag == report::ItemTag::kUsage && isInSet) {
            const auto id = static_cast<uint16_t>(item.value);
            const uint32_t itsPage = item.data.size() == 4 ? item.value >> 16 : page;
            if (!isFirst)
                found.push_back({.minimum = {static_cast<uint16_t>(itsPage), id},
                    .maximum = id,
                    .offset = item.offset});
            isFirst = false;
        }
    }
    return found;
}

} // namespace

AbsenceFinder::AbsenceFinder(std::span<const uint8_t> descriptor, const report::Layout& layout,
    const report::UsageNames& names)
    : layout_(layout)
    , names_(names)
    , stack_(readAsStack(descriptor))
    , longItem_(findLongItem(descriptor))
    , alternatives_(findAlternatives(descriptor))
{
    for (size_t i = 0; i < layout.collections.size(); ++i) {
        const report::Collection& collection = layout.collections[i];
        const bool isTop = collection.parent == report::Collection::kNone;
        const bool isHeadset = collection.usage == kHeadsetUsage;
        surroundings_.push_back(
            isTop ? Surroundings{i, isHeadset} : surroundings_[collection.parent]);
        // Collections before any Usage Page item are none for the stack.
        if (stack_.collectionAt(collection.offset) && !isSeen(surroundings_.back().top))
            surroundings_.back().top = i;
        surroundings_.back().inHeadset |= isHeadset;
    }
}

bool AbsenceFinder::isSeen(size_t collection) const
{
    return stack_.collectionAt(layout_.collections[collection].offset) != nullptr;
}

void AbsenceFinder::explain(const Control& control, ControlEntry& entry) const
{
    Reasons fewest;
    for (const report::Field& field : layout_.fields) {
        for (const report::UsageRange& usage : field.usages) {
            if (!contains(usage, control.usage))
                continue;
            Reasons reasons = reasonsFor(control, {field, usage});
            if (fewest.empty() || reasons.size() < fewest.size())
                fewest = std::move(reasons);
        }
    }
    if (fewest.empty())
        fewest.push_back(notInFields(control));
    entry.reason = std::move(fewest.front());
    fewest.erase(fewest.begin());
    entry.furtherReasons = std::move(fewest);
}

Remark AbsenceFinder::notInFields(const Control& control) const
{
    const auto found = std::ranges::find(
        alternatives_, control.usage, [](const auto& usage) { return usage.minimum; });
    if (found == alternatives_.end())
        return {"absent", "Not in the descriptor."};
    return {"delimiter-alternative",
        "Its usage at " + offsetText(found->offset)
            + " is not the first one between two delimiters. It is an alternative name of the "
              "first one."};
}

AbsenceFinder::Reasons AbsenceFinder::reasonsFor(const Control& control, const Place& place) const
{
    Reasons reasons;
    addKindReason(control, place, reasons);
    addCollectionReason(place, reasons);
    addUsageReason(place, reasons);
    addCountReason(place, reasons);
    if (reasons.empty())
        reasons.push_back(tooLong({place.field.kind, place.field.reportId}));
    if (place.field.isPadding())
        reasons.push_back({"constant-field",
            "Its field at " + offsetText(place.field.offset)
                + " is constant: padding, which carries no data."});
    return reasons;
}

Remark AbsenceFinder::tooLong(report::Layout::ReportKey report) const
{
    std::string text = "For Kelprobe, " + reportName(report)
        + " is longer than the 65,535 bytes that USB can describe.";
    if (layout_.reportBits.at(report) < report::Layout::kMaxReportBits)
        text += " That is wrong: it ignores Push and Pop, and gives an item without data the value "
                "of the item before it.";
    return {"report-too-long", text};
}

void AbsenceFinder::addKindReason(
    const Control& control, const Place& place, Reasons& reasons) const
{
    const report::Field& field = place.field;
    if (field.kind == control.kind)
        return;
    const bool isFeature = field.kind == report::ReportKind::kFeature;
    reasons.push_back({isFeature ? "feature-report" : "wrong-direction",
        "It is in " + reportName({field.kind, field.reportId}) + ". Kelprobe looks for "
            + (control.kind == report::ReportKind::kInput ? "buttons in Input" : "LEDs in Output")
            + " reports only."});
}

void AbsenceFinder::addCollectionReason(const Place& place, Reasons& reasons) const
{
    if (place.field.collection == report::Collection::kNone) {
        reasons.push_back({"other-collection", "It is outside of all collections."});
        return;
    }
    const Surroundings& around = surroundings_[place.field.collection];
    const report::Collection& top = layout_.collections[around.top];
    if (top.usage == kHeadsetUsage)
        addHeadsetReason(top, reasons);
    else if (around.inHeadset)
        reasons.push_back({"nested-headset",
            "Its Headset collection is inside the collection " + nameOf(top)
                + ". Kelprobe searches only a Headset collection at the top level."});
    else
        reasons.push_back({"other-collection",
            "It is in the collection " + nameOf(top)
                + ". Kelprobe searches only a Headset collection of the Telephony page."});
}

// For a top-level Headset collection.
void AbsenceFinder::addHeadsetReason(const report::Collection& headset, Reasons& reasons) const
{
    const StackCollection* const seen = stack_.collectionAt(headset.offset);
    const std::string where = "The Headset collection at " + offsetText(headset.offset);
    if (!seen && longItem_ && *longItem_ < headset.offset)
        reasons.push_back({"long-item",
            where + " comes after a long item at " + offsetText(*longItem_)
                + ". Kelprobe reads its bytes as short items."});
    else if (headset.extendedUsage)
        reasons.push_back({"extended-headset",
            where
                + " has an extended usage, which includes its page. Kelprobe compares it with "
                  "0x05 only."});
    else if (seen && seen->page > 0xFFFF && (seen->page & 0xFFFF) == kTelephonyPage)
        reasons.push_back({"page-value",
            where
                + " comes after a Usage Page item of four bytes whose upper half is not 0. "
                  "Kelprobe does not take it for the Telephony page."});
    else if (!seen || seen->page != kTelephonyPage)
        reasons.push_back({"page-elsewhere",
            where
                + " has no Usage Page (Telephony) for Kelprobe. One must come before it outside "
                  "of all collections, with no surplus End Collection in between."});
    else if (seen->usage != kHeadset)
        reasons.push_back(
            {"usage-apart", where + " does not come directly after its item Usage (Headset)."});
    else if (seen->pageIndex != stack_.telephonyPage)
        reasons.push_back({"later-telephony-page",
            where
                + " comes after a later Usage Page (Telephony). Kelprobe searches only what comes "
                  "after the first one, up to the next Usage Page outside of collections."});
    else if (!stack_.headset || &stack_.collections[*stack_.headset] != seen)
        reasons.push_back({"later-headset",
            where
                + " is not that of the first Usage (Headset), which is the only one that "
                  "Kelprobe searches."});
}

void AbsenceFinder::addUsageReason(const Place& place, Reasons& reasons) const
{
    const std::string where = "Its usage at " + offsetText(place.usage.offset);
    if (!place.field.isVariable() && !place.field.isConstant())
        reasons.push_back({"array-field",
            "It is an element of the array at " + offsetText(place.field.offset)
                + ", whose report has numbers of elements. Kelprobe uses fields of one bit."});
    if (place.usage.isRange)
        reasons.push_back({"usage-range",
            where + " is given by Usage Minimum and Usage Maximum, which Kelprobe ignores."});
    else if (place.usage.extended)
        reasons.push_back({"extended-usage",
            where
                + " is an extended usage, which includes its page. Kelprobe compares usages "
                  "without pages."});
}

void AbsenceFinder::addCountReason(const Place& place, Reasons& reasons) const
{
    const report::Field& field = place.field;
    const std::string item
        = std::string(report::itemName(field.kind)) + " at " + offsetText(field.offset);
    const StackField* const seen = findField(field);
    if (!seen && reasons.empty()) {
        assert(longItem_); // nothing else moves a field to another collection
        reasons.push_back({"long-item",
            "The " + item + " comes after a long item at " + offsetText(*longItem_)
                + ". Kelprobe reads its bytes as short items."});
    }
    const bool isArray = !field.isVariable() && !field.isConstant();
    if (!seen || seen->takes(place.usage.offset) || isArray)
        return;
    const bool isCut
        = field.bitOffset + uint64_t{field.size} * seen->count > report::Layout::kMaxReportBits;
    if (field.size != 0 && !isCut && seen->count != field.count)
        reasons.push_back({"count-elsewhere",
            "For the " + item + " Kelprobe has the Report Count " + std::to_string(seen->count)
                + " instead of " + std::to_string(field.count)
                + ". It ignores Push, Pop, and Report Count outside of collections."});
    else if (place.usage.isRange || place.usage.extended)
        return; // the number of Usage items changes when this is repaired
    else if (seen->usages.size() > seen->count)
        reasons.push_back({"more-usages",
            "The " + item + " has " + counted(seen->usages.size(), "usage") + " for "
                + counted(seen->count, "value")
                + ". Kelprobe takes the last ones, and this is not one of them."});
    else
        reasons.push_back({"fewer-usages",
            "The " + item + " has " + counted(seen->usages.size(), "Usage item") + " for "
                + counted(seen->count, "value")
                + ". Kelprobe takes usages only if there is one for each value."});
}

// Null if the stack does not see it in the same collection.
const StackField* AbsenceFinder::findField(const report::Field& field) const
{
    const StackField* const seen = stack_.fieldAt(field.offset);
    if (!seen || field.collection == report::Collection::kNone)
        return nullptr;
    const size_t top = layout_.collections[surroundings_[field.collection].top].offset;
    return stack_.collections[seen->collection].offset == top ? seen : nullptr;
}

std::string AbsenceFinder::nameOf(const report::Collection& collection) const
{
    return collectionName(collection, names_);
}

} // namespace ctl
