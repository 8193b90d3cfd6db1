#include "report/item.h"

#include <algorithm>
#include <array>

namespace report {
namespace {

constexpr uint8_t kLongPrefix = 0xFE;
constexpr size_t kLongHeaderSize = 3; // prefix, length of the data, tag

struct TagName {
    ItemTag tag;
    std::string_view text;
};

constexpr std::array kTagNames = {
    TagName{ItemTag::kInput, "Input"},
    TagName{ItemTag::kOutput, "Output"},
    TagName{ItemTag::kCollection, "Collection"},
    TagName{ItemTag::kFeature, "Feature"},
    TagName{ItemTag::kEndCollection, "End Collection"},
    TagName{ItemTag::kUsagePage, "Usage Page"},
    TagName{ItemTag::kLogicalMinimum, "Logical Minimum"},
    TagName{ItemTag::kLogicalMaximum, "Logical Maximum"},
    TagName{ItemTag::kPhysicalMinimum, "Physical Minimum"},
    TagName{ItemTag::kPhysicalMaximum, "Physical Maximum"},
    TagName{ItemTag::kUnitExponent, "Unit Exponent"},
    TagName{ItemTag::kUnit, "Unit"},
    TagName{ItemTag::kReportSize, "Report Size"},
    TagName{ItemTag::kReportId, "Report ID"},
    TagName{ItemTag::kReportCount, "Report Count"},
    TagName{ItemTag::kPush, "Push"},
    TagName{ItemTag::kPop, "Pop"},
    TagName{ItemTag::kUsage, "Usage"},
    TagName{ItemTag::kUsageMinimum, "Usage Minimum"},
    TagName{ItemTag::kUsageMaximum, "Usage Maximum"},
    TagName{ItemTag::kDesignatorIndex, "Designator Index"},
    TagName{ItemTag::kDesignatorMinimum, "Designator Minimum"},
    TagName{ItemTag::kDesignatorMaximum, "Designator Maximum"},
    TagName{ItemTag::kStringIndex, "String Index"},
    TagName{ItemTag::kStringMinimum, "String Minimum"},
    TagName{ItemTag::kStringMaximum, "String Maximum"},
    TagName{ItemTag::kDelimiter, "Delimiter"},
};

// The length that the item gives for its data, and that of what comes before them. A long item
// whose header is cut off has no data.
struct Sizes {
    size_t header = 1;
    size_t data = 0;
};

Sizes sizesOf(std::span<const uint8_t> rest)
{
    constexpr std::array<size_t, 4> shortSizes = {0, 1, 2, 4};
    if (rest[0] == kLongPrefix)
        return {kLongHeaderSize, rest.size() > 1 ? rest[1] : size_t{0}};
    return {1, shortSizes[rest[0] & 3]};
}

uint32_t unsignedValue(std::span<const uint8_t> data)
{
    uint32_t value = 0;
    for (size_t i = 0; i < data.size(); ++i)
        value |= uint32_t{data[i]} << (8 * i);
    return value;
}

int32_t signedValue(uint32_t value, size_t size)
{
    switch (size) {
    case 1:
        return static_cast<int8_t>(value);
    case 2:
        return static_cast<int16_t>(value);
    default:
        return static_cast<int32_t>(value);
    }
}

} // namespace

std::string_view tagName(ItemTag tag)
{
    const auto found = std::ranges::find(kTagNames, tag, &TagName::tag);
    return found == kTagNames.end() ? std::string_view() : found->text;
}

bool ItemReader::next(Item& item)
{
    const std::span<const uint8_t> rest = descriptor_.subspan(offset_);
    if (rest.empty())
        return false;
    const Sizes sizes = sizesOf(rest);
    item.tag = static_cast<ItemTag>(rest[0] & 0xFC);
    item.offset = offset_;
    item.truncated = sizes.header + sizes.data > rest.size();
    item.bytes = rest.first(std::min(sizes.header + sizes.data, rest.size()));
    item.data = item.bytes.subspan(std::min(sizes.header, item.bytes.size()));
    item.value = item.isLong() ? 0 : unsignedValue(item.data);
    item.signedValue = item.isLong() ? 0 : signedValue(item.value, item.data.size());
    offset_ += item.bytes.size();
    return true;
}

std::vector<Item> splitItems(std::span<const uint8_t> descriptor)
{
    std::vector<Item> items;
    ItemReader reader(descriptor);
    for (Item item{}; reader.next(item);)
        items.push_back(item);
    return items;
}

} // namespace report
