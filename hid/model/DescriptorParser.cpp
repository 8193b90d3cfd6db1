#include "hid/model/DescriptorParser.h"

#include "hid/model/UsagePage.h"

namespace KX {

CollectionContents::CollectionContents(IData& collection, uint32_t page, ReportShape& shape)
    : collection_(collection)
    , usagePage_(page)
    , shape_(shape)
{
    constexpr size_t usualUsages = 32; // before one field
    pendingUsages_.reserve(usualUsages);
    AddGroup(Item{kTagReportId, 0});
}

void CollectionContents::Add(const Item& item)
{
    switch (item.tag) {
    case kTagUsagePage:
        usagePage_ = item.value;
        break;
    case kTagUsage:
        pendingUsages_.push_back(item.value);
        break;
    case kTagReportSize:
        shape_.size = item.value;
        break;
    case kTagReportCount:
        shape_.count = item.value;
        break;
    case kTagReportId:
        SetReportId(item);
        break;
    case kTagCollection:
    case kTagFeature:
        pendingUsages_.clear();
        break;
    case kTagInput:
    case kTagOutput:
        AddField(item);
        break;
    default:
        break; // other items do not change the position of a bit
    }
}

void CollectionContents::AddGroup(const Item& item)
{
    auto group = std::make_unique<ReportGroup>(item);
    group_ = group.get();
    collection_.AddChild(std::move(group));
}

void CollectionContents::SetReportId(const Item& item)
{
    if (group_->reportId == 0)
        group_->reportId = item.value;
    else
        AddGroup(item);
}

void CollectionContents::AddField(const Item& item)
{
    const FieldLayout layout{group_->reportId, static_cast<int32_t>(shape_.size),
        static_cast<int32_t>(shape_.count), static_cast<uint8_t>(usagePage_)};
    group_->AddChild(std::make_unique<DataField>(item, layout, TakeUsages()));
}

// If there are more usages than fields, the last usages are used.
std::vector<uint32_t> CollectionContents::TakeUsages()
{
    std::vector<uint32_t> usages;
    if (shape_.count <= pendingUsages_.size())
        usages.assign(pendingUsages_.end() - shape_.count, pendingUsages_.end());
    pendingUsages_.clear();
    return usages;
}

void DescriptorParser::ParseRoot(IData& root)
{
    while (const Item* item = reader_.Peek()) {
        if (item->tag != kTagUsagePage) {
            reader_.Consume();
            continue;
        }
        auto page = std::make_unique<UsagePage>(*item);
        reader_.Consume();
        ParsePage(*page);
        root.AddChild(std::move(page));
    }
}

void DescriptorParser::ParsePage(IData& page)
{
    while (const Item* item = reader_.Peek()) {
        // ParseRoot() handles both: it opens the next page or skips the unmatched end.
        if (item->tag == kTagUsagePage || item->tag == kTagEndCollection)
            return;
        if (item->tag == kTagCollection) {
            ++depth_;
            auto collection = std::make_unique<Collection>(*item);
            reader_.Consume();
            ParseCollection(*collection, page.value);
            page.AddChild(std::move(collection));
            continue;
        }
        if (item->tag == kTagUsage)
            page.AddChild(std::make_unique<Usage>(*item));
        reader_.Consume();
    }
}

void DescriptorParser::ParseCollection(IData& collection, uint32_t page)
{
    const size_t entryDepth = depth_;
    CollectionContents contents(collection, page, shape_);
    while (depth_ >= entryDepth) {
        const Item* item = reader_.Peek();
        if (!item)
            return;
        if (item->tag == kTagCollection)
            ++depth_;
        else if (item->tag == kTagEndCollection)
            --depth_;
        contents.Add(*item);
        reader_.Consume();
    }
}

} // namespace KX
