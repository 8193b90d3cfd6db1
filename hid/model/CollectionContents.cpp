#include "hid/model/CollectionContents.h"

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

void CollectionContents::Take(const Item& item)
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
        break; // extents, units, ranges and the like do not move a bit
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

// A field that names more usages than it has room for belongs to the last of them.
std::vector<uint32_t> CollectionContents::TakeUsages()
{
    std::vector<uint32_t> usages;
    if (shape_.count <= pendingUsages_.size())
        usages.assign(pendingUsages_.end() - shape_.count, pendingUsages_.end());
    pendingUsages_.clear();
    return usages;
}

} // namespace KX
