#include "report/layout_reader.h"

#include <algorithm>
#include <utility>

namespace report {
LayoutReader::LayoutReader()
{
    constexpr size_t usualFields = 32; // of a device
    layout_.fields.reserve(usualFields);
}

void LayoutReader::handleItem(const Item& item)
{
    if (item.truncated)
        addProblem(item, "The descriptor ends within this item");
    else if (item.isLong())
        return;
    else if (item.type() == Item::Type::kMain)
        handleMain(item);
    else if (item.type() == Item::Type::kGlobal)
        handleGlobal(item);
    else
        handleLocal(item);
}

Layout LayoutReader::finish()
{
    [[maybe_unused]] const auto unused = usages_.take(globals_.usagePage);
    for (const size_t collection : open_)
        addProblem(layout_.collections[collection].offset, "Collection without its end");
    for (const Saved& saved : saved_)
        addProblem(saved.offset, "Push without a Pop");
    addMissingReportIds();
    std::ranges::stable_sort(layout_.problems, {}, &Problem::offset);
    return std::move(layout_);
}

void LayoutReader::handleMain(const Item& item)
{
    std::vector<UsageRange> usages = usages_.take(globals_.usagePage);
    switch (item.tag) {
    case ItemTag::kInput:
        addField(item, ReportKind::kInput, std::move(usages));
        break;
    case ItemTag::kOutput:
        addField(item, ReportKind::kOutput, std::move(usages));
        break;
    case ItemTag::kFeature:
        addField(item, ReportKind::kFeature, std::move(usages));
        break;
    case ItemTag::kCollection:
        beginCollection(item, usages);
        break;
    case ItemTag::kEndCollection:
        endCollection(item);
        break;
    default:
        addProblem(item, "Reserved item");
    }
}

void LayoutReader::handleGlobal(const Item& item)
{
    switch (item.tag) {
    case ItemTag::kUsagePage:
        return setUsagePage(item);
    case ItemTag::kLogicalMinimum:
        globals_.logicalMinimum = item.signedValue;
        return;
    case ItemTag::kLogicalMaximum:
        globals_.signedLogicalMaximum = item.signedValue;
        globals_.unsignedLogicalMaximum = item.value;
        globals_.hasLogicalMaximum = true;
        return;
    case ItemTag::kReportSize:
        globals_.reportSize = item.value;
        return;
    case ItemTag::kReportCount:
        globals_.reportCount = item.value;
        return;
    case ItemTag::kReportId:
        return setReportId(item);
    case ItemTag::kPush:
        saved_.push_back({globals_, item.offset});
        return;
    case ItemTag::kPop:
        return pop(item);
    default:
        // Physical ranges and units do not change where the values are.
        if (tagName(item.tag).empty())
            addProblem(item, "Reserved item");
    }
}

void LayoutReader::handleLocal(const Item& item)
{
    if (tagName(item.tag).empty())
        addProblem(item, "Reserved item");
    else
        usages_.add(item);
}

void LayoutReader::setUsagePage(const Item& item)
{
    globals_.usagePage = static_cast<uint16_t>(item.value);
    if (item.value > UINT16_MAX)
        addProblem(item, "Usage Page above 0xffff");
}

void LayoutReader::setReportId(const Item& item)
{
    if (item.value == 0 || item.value > UINT8_MAX) {
        addProblem(item, "Report ID that is not from 1 to 255");
        return;
    }
    globals_.reportId = static_cast<uint8_t>(item.value);
    layout_.usesReportIds = true;
}

void LayoutReader::pop(const Item& item)
{
    if (saved_.empty()) {
        addProblem(item, "Pop without a Push");
        return;
    }
    globals_ = saved_.back().globals;
    saved_.pop_back();
}

void LayoutReader::beginCollection(const Item& item, const std::vector<UsageRange>& usages)
{
    Collection collection;
    collection.type = static_cast<uint8_t>(item.value);
    if (!usages.empty()) {
        collection.usage = usages.front().minimum;
        collection.extendedUsage = usages.front().extended;
    }
    if (!open_.empty())
        collection.parent = open_.back();
    collection.offset = item.offset;
    open_.push_back(layout_.collections.size());
    layout_.collections.push_back(collection);
}

void LayoutReader::endCollection(const Item& item)
{
    if (open_.empty())
        addProblem(item, "End Collection without a Collection");
    else
        open_.pop_back();
}

void LayoutReader::addField(const Item& item, ReportKind kind, std::vector<UsageRange> usages)
{
    Field field;
    field.kind = kind;
    field.reportId = globals_.reportId;
    field.flags = item.value;
    field.size = globals_.reportSize;
    field.logicalMinimum = globals_.logicalMinimum;
    field.logicalMaximum = field.isSigned() ? int64_t{globals_.signedLogicalMaximum}
                                            : int64_t{globals_.unsignedLogicalMaximum};
    field.usages = std::move(usages);
    field.collection = open_.empty() ? Collection::kNone : open_.back();
    field.offset = item.offset;
    addToReport(field);
    addFieldProblems(field);
    layout_.fields.push_back(std::move(field));
}

void LayoutReader::addToReport(Field& field)
{
    Report& report = reportOf({field.kind, field.reportId});
    const uint32_t free = Layout::kMaxReportBits - *report.bits;
    const uint64_t declared = uint64_t{field.size} * globals_.reportCount;
    field.bitOffset = *report.bits;
    if (field.size != 0)
        field.count = std::min(globals_.reportCount, free / field.size);
    if (declared > free)
        addProblem(field.offset, "Report longer than 65535 bytes");
    *report.bits += static_cast<uint32_t>(std::min<uint64_t>(declared, free));
    report.fields->push_back(layout_.fields.size());
}

// Most fields belong to the same report as the one before.
LayoutReader::Report& LayoutReader::reportOf(Layout::ReportKey key)
{
    if (!report_.bits || report_.key != key) {
        constexpr size_t usualFields = 8; // of a report
        report_ = {key, &layout_.reportBits[key], &layout_.reportFields[key]};
        report_.fields->reserve(std::max(report_.fields->capacity(), usualFields));
    }
    return report_;
}

void LayoutReader::addFieldProblems(const Field& field)
{
    const auto problem = [&](const char* what) {
        addProblem(field.offset, std::string(itemName(field.kind)) + what);
    };
    if (open_.empty())
        problem(" outside of all collections");
    if (globals_.reportSize == 0 || globals_.reportCount == 0)
        problem(" without bits: Report Size or Report Count is 0");
    if (field.isPadding())
        return;
    if (!globals_.hasLogicalMaximum)
        problem(" without a Logical Maximum");
    else if (field.logicalMinimum > field.logicalMaximum)
        addProblem(field.offset, "Logical Minimum above Logical Maximum");
    if (field.isVariable() && field.usageCount() > globals_.reportCount)
        problem(" with more usages than values");
}

// One problem for all fields without an id.
void LayoutReader::addMissingReportIds()
{
    const auto found = std::ranges::find(layout_.fields, 0, &Field::reportId);
    if (layout_.usesReportIds && found != layout_.fields.end())
        addProblem(found->offset,
            std::string(itemName(found->kind)) + " without a Report ID; others have one");
}

void LayoutReader::addProblem(const Item& item, std::string text)
{
    addProblem(item.offset, std::move(text));
}

void LayoutReader::addProblem(size_t offset, std::string text)
{
    layout_.problems.push_back({offset, std::move(text)});
}

} // namespace report
