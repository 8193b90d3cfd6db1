#include "report/layout.h"

#include "report/local_usages.h"

#include <algorithm>

namespace report {
namespace {

// The state that Global items set, and that Push and Pop save and restore.
struct Globals {
    uint16_t usagePage = 0;
    int32_t logicalMinimum = 0;
    int32_t signedLogicalMaximum = 0;
    uint32_t unsignedLogicalMaximum = 0;
    bool hasLogicalMaximum = false;
    uint32_t reportSize = 0;
    uint32_t reportCount = 0;
    uint8_t reportId = 0;
};

const char* nameOf(ReportKind kind)
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

class LayoutReader {
public:
    void handleItem(const Item& item)
    {
        if (item.truncated)
            addProblem(item.offset, "The descriptor ends within this item");
        else if (item.isLong())
            return;
        else if (item.isMain())
            handleMain(item);
        else if (!handleGlobal(item) && !handleLocal(item))
            addProblem(item.offset, "Reserved item");
    }

    Layout finish()
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

private:
    struct Saved {
        Globals globals;
        size_t offset; // of the Push
    };

    void handleMain(const Item& item)
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
            addProblem(item.offset, "Reserved item");
        }
    }

    // False if it is no Global item.
    bool handleGlobal(const Item& item)
    {
        switch (item.tag) {
        case ItemTag::kUsagePage:
            globals_.usagePage = static_cast<uint16_t>(item.value);
            if (item.value > UINT16_MAX)
                addProblem(item.offset, "Usage Page above 0xffff");
            return true;
        case ItemTag::kLogicalMinimum:
            globals_.logicalMinimum = item.signedValue;
            return true;
        case ItemTag::kLogicalMaximum:
            globals_.signedLogicalMaximum = item.signedValue;
            globals_.unsignedLogicalMaximum = item.value;
            globals_.hasLogicalMaximum = true;
            return true;
        case ItemTag::kReportSize:
            globals_.reportSize = item.value;
            return true;
        case ItemTag::kReportCount:
            globals_.reportCount = item.value;
            return true;
        case ItemTag::kReportId:
            setReportId(item);
            return true;
        case ItemTag::kPush:
            saved_.push_back({globals_, item.offset});
            return true;
        case ItemTag::kPop:
            pop(item);
            return true;
        case ItemTag::kPhysicalMinimum:
        case ItemTag::kPhysicalMaximum:
        case ItemTag::kUnitExponent:
        case ItemTag::kUnit:
            return true;
        default:
            return false;
        }
    }

    // False if it is no Local item.
    bool handleLocal(const Item& item)
    {
        switch (item.tag) {
        case ItemTag::kUsage:
        case ItemTag::kUsageMinimum:
        case ItemTag::kUsageMaximum:
        case ItemTag::kDelimiter:
            usages_.add(item);
            return true;
        case ItemTag::kDesignatorIndex:
        case ItemTag::kDesignatorMinimum:
        case ItemTag::kDesignatorMaximum:
        case ItemTag::kStringIndex:
        case ItemTag::kStringMinimum:
        case ItemTag::kStringMaximum:
            return true;
        default:
            return false;
        }
    }

    void setReportId(const Item& item)
    {
        if (item.value == 0 || item.value > UINT8_MAX) {
            addProblem(item.offset, "Report ID that is not from 1 to 255");
            return;
        }
        globals_.reportId = static_cast<uint8_t>(item.value);
        layout_.usesReportIds = true;
    }

    void pop(const Item& item)
    {
        if (saved_.empty()) {
            addProblem(item.offset, "Pop without a Push");
            return;
        }
        globals_ = saved_.back().globals;
        saved_.pop_back();
    }

    void beginCollection(const Item& item, const std::vector<UsageRange>& usages)
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

    void endCollection(const Item& item)
    {
        if (open_.empty())
            addProblem(item.offset, "End Collection without a Collection");
        else
            open_.pop_back();
    }

    void addField(const Item& item, ReportKind kind, std::vector<UsageRange> usages)
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

    // Gives the field its place.
    void addToReport(Field& field)
    {
        const Layout::ReportKey key{field.kind, field.reportId};
        uint32_t& bits = layout_.reportBits[key];
        const uint32_t free = Layout::kMaxReportBits - bits;
        field.bitOffset = bits;
        if (field.size != 0)
            field.count = std::min(globals_.reportCount, free / field.size);
        const uint64_t declared = uint64_t{field.size} * globals_.reportCount;
        if (declared > free)
            addProblem(field.offset, "Report longer than 65535 bytes");
        bits += static_cast<uint32_t>(std::min<uint64_t>(declared, free));
        layout_.reportFields[key].push_back(layout_.fields.size());
    }

    void addFieldProblems(const Field& field)
    {
        const std::string name = nameOf(field.kind);
        if (open_.empty())
            addProblem(field.offset, name + " outside of all collections");
        if (globals_.reportSize == 0 || globals_.reportCount == 0)
            addProblem(field.offset, name + " without bits: Report Size or Report Count is 0");
        if (field.isPadding())
            return;
        if (!globals_.hasLogicalMaximum)
            addProblem(field.offset, name + " without a Logical Maximum");
        else if (field.logicalMinimum > field.logicalMaximum)
            addProblem(field.offset, "Logical Minimum above Logical Maximum");
        if (field.isVariable() && field.usageCount() > globals_.reportCount)
            addProblem(field.offset, name + " with more usages than values");
    }

    // One problem for all fields without an id.
    void addMissingReportIds()
    {
        const auto found = std::ranges::find(layout_.fields, 0, &Field::reportId);
        if (layout_.usesReportIds && found != layout_.fields.end())
            addProblem(found->offset,
                nameOf(found->kind) + std::string(" without a Report ID; others have one"));
    }

    void addProblem(size_t offset, std::string text)
    {
        layout_.problems.push_back({offset, std::move(text)});
    }

    Layout layout_;
    LocalUsages usages_{layout_.problems};
    Globals globals_;
    std::vector<Saved> saved_;
    std::vector<size_t> open_; // collections, outermost first
};

} // namespace

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
    for (const Item& item : splitItems(descriptor))
        reader.handleItem(item);
    return reader.finish();
}

} // namespace report
