#include "report/annotation.h"

#include <array>
#include <cstdio>
#include <utility>

namespace report {
namespace {

std::string hexadecimal(uint32_t value)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%02x", value);
    return text.data();
}

std::string collectionType(uint32_t value)
{
    constexpr std::array<const char*, 7> names = {"Physical", "Application", "Logical", "Report",
        "Named Array", "Usage Switch", "Usage Modifier"};
    constexpr uint32_t firstVendorType = 0x80;
    if (value < names.size())
        return names[value];
    return (value < firstVendorType ? "Reserved " : "Vendor ") + hexadecimal(value);
}

// The first three flags in any case, of the others only those that are set.
std::string mainFlags(const Item& item)
{
    std::string text = item.value & Field::kConstant ? "Constant" : "Data";
    text += item.value & Field::kVariable ? ", Variable" : ", Array";
    text += item.value & Field::kRelative ? ", Relative" : ", Absolute";
    constexpr std::array<std::pair<uint32_t, const char*>, 6> others = {{
        {Field::kWrap, ", Wrap"},
        {Field::kNonlinear, ", Nonlinear"},
        {Field::kNoPreferredState, ", No Preferred State"},
        {Field::kNullState, ", Null State"},
        {Field::kVolatile, ", Volatile"},
        {Field::kBufferedBytes, ", Buffered Bytes"},
    }};
    for (const auto& [flag, name] : others) {
        const bool reserved = flag == Field::kVolatile && item.tag == ItemTag::kInput;
        if ((item.value & flag) && !reserved)
            text += name;
    }
    return text;
}

// Four bits with a sign, in some descriptors as a number of the item's length instead.
int32_t unitExponent(const Item& item)
{
    const bool isNibble = item.value >= 8 && item.value <= 15;
    return isNibble ? item.signedValue - 16 : item.signedValue;
}

class Annotator {
public:
    explicit Annotator(const UsageNames& names)
        : names_(names)
    {
    }

    void add(const Item& item)
    {
        if (item.tag == ItemTag::kEndCollection && !item.truncated && depth_ > 0)
            --depth_;
        annotated_.push_back({item, depth_, {}});
        if (item.truncated || item.isLong())
            return;
        followState(item);
        if (item.type() == Item::Type::kMain)
            putIntoWords();
    }

    std::vector<AnnotatedItem> finish()
    {
        putIntoWords();
        return std::move(annotated_);
    }

private:
    // What the meaning of other items depends on.
    struct Globals {
        uint16_t usagePage = 0;
        bool logicalIsSigned = false;
        bool physicalIsSigned = false;
    };

    void followState(const Item& item)
    {
        switch (item.tag) {
        case ItemTag::kCollection:
            ++depth_;
            break;
        case ItemTag::kUsagePage:
            globals_.usagePage = static_cast<uint16_t>(item.value);
            break;
        case ItemTag::kLogicalMinimum:
            globals_.logicalIsSigned = item.signedValue < 0;
            break;
        case ItemTag::kPhysicalMinimum:
            globals_.physicalIsSigned = item.signedValue < 0;
            break;
        case ItemTag::kPush:
            saved_.push_back(globals_);
            break;
        case ItemTag::kPop:
            if (!saved_.empty()) {
                globals_ = saved_.back();
                saved_.pop_back();
            }
            break;
        default:
            break;
        }
    }

    // Puts the items since the last Main item into words. The page of their usages is the one at
    // the Main item, and a maximum has a sign if the minimum, which may come later, is negative.
    void putIntoWords()
    {
        for (; worded_ < annotated_.size(); ++worded_)
            annotated_[worded_].text = words(annotated_[worded_].item);
    }

    std::string words(const Item& item) const
    {
        if (item.isLong() && !item.truncated)
            return longItem(item);
        const std::string_view tag = item.isLong() ? "Long item" : tagName(item.tag);
        std::string text = tag.empty() ? "Reserved item" : std::string(tag);
        if (item.truncated)
            return text + ", cut off by the end of the descriptor";
        if (const std::string detail = tag.empty() ? "" : details(item); !detail.empty())
            text += " (" + detail + ')';
        return text;
    }

    static std::string longItem(const Item& item)
    {
        constexpr size_t tagAt = 2;
        const size_t size = item.data.size();
        return "Long item (tag " + hexadecimal(item.bytes[tagAt]) + ", " + std::to_string(size)
            + (size == 1 ? " byte)" : " bytes)");
    }

    std::string details(const Item& item) const
    {
        switch (item.tag) {
        case ItemTag::kInput:
        case ItemTag::kOutput:
        case ItemTag::kFeature:
            return mainFlags(item);
        case ItemTag::kCollection:
            return collectionType(item.value);
        case ItemTag::kEndCollection:
        case ItemTag::kPush:
        case ItemTag::kPop:
            return {};
        case ItemTag::kUsagePage:
            return names_.page(static_cast<uint16_t>(item.value));
        case ItemTag::kUsage:
        case ItemTag::kUsageMinimum:
        case ItemTag::kUsageMaximum:
            return usage(item);
        case ItemTag::kLogicalMinimum:
        case ItemTag::kPhysicalMinimum:
            return std::to_string(item.signedValue);
        case ItemTag::kLogicalMaximum:
            return number(item, globals_.logicalIsSigned);
        case ItemTag::kPhysicalMaximum:
            return number(item, globals_.physicalIsSigned);
        case ItemTag::kUnitExponent:
            return std::to_string(unitExponent(item));
        case ItemTag::kUnit:
            return hexadecimal(item.value);
        case ItemTag::kDelimiter:
            return item.value == 1 ? "Open" : item.value == 0 ? "Close" : number(item, false);
        default:
            return number(item, false);
        }
    }

    static std::string number(const Item& item, bool isSigned)
    {
        return isSigned ? std::to_string(item.signedValue) : std::to_string(item.value);
    }

    std::string usage(const Item& item) const
    {
        const auto id = static_cast<uint16_t>(item.value);
        if (item.data.size() < 4)
            return names_.usage({globals_.usagePage, id});
        const auto page = static_cast<uint16_t>(item.value >> 16);
        return names_.page(page) + ": " + names_.usage({page, id});
    }

    const UsageNames& names_;
    std::vector<AnnotatedItem> annotated_;
    size_t worded_ = 0; // number of elements that have their text
    size_t depth_ = 0;
    Globals globals_;
    std::vector<Globals> saved_;
};

} // namespace

std::vector<AnnotatedItem> annotate(std::span<const uint8_t> descriptor, const UsageNames& names)
{
    Annotator annotator(names);
    for (const Item& item : splitItems(descriptor))
        annotator.add(item);
    return annotator.finish();
}

} // namespace report
