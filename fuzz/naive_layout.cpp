#include "fuzz/naive_layout.h"

#include <algorithm>

namespace naive {
namespace {

struct Item {
    size_t offset;
    unsigned tag; // prefix without the size
    size_t size;
    uint32_t number;
};

// Whole short items only.
std::vector<Item> Items(std::span<const uint8_t> bytes)
{
    std::vector<Item> items;
    for (size_t at = 0; at < bytes.size();) {
        const unsigned prefix = bytes[at];
        if (prefix == 0xFE) {
            at += at + 1 < bytes.size() ? 3u + bytes[at + 1] : 3u;
            continue;
        }
        const size_t size = prefix % 4 == 3 ? 4 : prefix % 4;
        if (at + 1 + size > bytes.size())
            break;
        uint32_t number = 0;
        for (size_t i = size; i > 0; --i)
            number = number * 256 + bytes[at + i];
        items.push_back({at, prefix - prefix % 4, size, number});
        at += 1 + size;
    }
    return items;
}

int64_t Signed(const Item& item)
{
    const int64_t limit = int64_t{1} << (item.size == 0 ? 32 : 8 * item.size);
    return item.number < limit / 2 ? item.number : item.number - limit;
}

// The usages that the items before a Main item give.
std::vector<Range> Usages(const std::vector<Item>& items, uint32_t page)
{
    std::vector<Range> usages;
    std::map<unsigned, Item> ends; // Usage Minimum and Usage Maximum without the other one
    bool inSet = false;
    size_t sizeBeforeSet = 0;
    for (const Item& item : items) {
        if (item.tag == 0xA8 && item.number <= 1 && inSet != (item.number == 1)) {
            inSet = !inSet;
            sizeBeforeSet = usages.size();
        }
        const bool isAlternative = inSet && usages.size() > sizeBeforeSet;
        if (isAlternative || (item.tag != 0x08 && item.tag != 0x18 && item.tag != 0x28))
            continue;
        if (item.tag == 0x08) {
            const uint32_t usage = item.size == 4 ? item.number : page * 65536 + item.number;
            usages.emplace_back(usage, usage);
            continue;
        }
        ends.insert_or_assign(item.tag, item);
        if (ends.size() < 2)
            continue;
        const Item minimum = ends.at(0x18);
        const Item maximum = ends.at(0x28);
        ends.clear();
        const uint32_t lowPage = minimum.size == 4 ? minimum.number / 65536
            : maximum.size == 4                    ? maximum.number / 65536
                                                   : page;
        const uint32_t highPage = maximum.size == 4 ? maximum.number / 65536 : lowPage;
        const uint32_t low = minimum.number % 65536;
        const uint32_t high = maximum.number % 65536;
        if (lowPage == highPage && low <= high)
            usages.emplace_back(lowPage * 65536 + low, lowPage * 65536 + high);
    }
    return usages;
}

class Walk {
public:
    void Take(const Item& item)
    {
        if (item.tag == 0xA4) {
            saved_.push_back(globals_);
        } else if (item.tag == 0xB4) {
            if (!saved_.empty()) {
                globals_ = saved_.back();
                saved_.pop_back();
            }
        } else if (item.tag % 16 == 4) {
            const bool isWrongId = item.tag == 0x84 && (item.number == 0 || item.number > 255);
            if (!isWrongId)
                globals_.insert_or_assign(item.tag, item);
            layout_.hasIds = layout_.hasIds || (item.tag == 0x84 && !isWrongId);
        } else if (item.tag % 16 == 8) {
            locals_.push_back(item);
        } else if (item.tag % 16 == 0) {
            TakeMain(item);
            locals_.clear();
        }
    }

    const Layout& End() const { return layout_; }

private:
    void TakeMain(const Item& item)
    {
        const std::vector<Range> usages = Usages(locals_, Global(0x04) % 65536);
        if (item.tag == 0xA0) {
            layout_.collections[item.offset]
                = {item.number % 256, usages.empty() ? 0 : usages[0].first,
                    open_.empty() ? std::nullopt : std::optional(open_.back())};
            open_.push_back(item.offset);
        }
        if (item.tag == 0xC0 && !open_.empty())
            open_.pop_back();
        const char kind = item.tag == 0x80 ? 'I' : item.tag == 0x90 ? 'O' : 'F';
        if (item.tag == 0x80 || item.tag == 0x90 || item.tag == 0xB0)
            AddField(layout_.reports[{kind, Global(0x84)}], item, usages);
    }

    void AddField(Report& report, const Item& item, const std::vector<Range>& usages)
    {
        constexpr int64_t maxBits = 65534 * 8;
        const int64_t size = Global(0x74);
        const int64_t count = Global(0x94);
        const int64_t fit = size == 0 ? 0 : std::min(count, (maxBits - report.bits) / size);
        const auto minimum = globals_.find(0x14);
        const auto maximum = globals_.find(0x24);
        const int64_t low = minimum == globals_.end() ? 0 : Signed(minimum->second);
        const int64_t high = maximum == globals_.end() ? 0
            : low < 0                                  ? Signed(maximum->second)
                                                       : maximum->second.number;
        report.fields.push_back(
            {item.offset, item.number, report.bits, size, fit, low, high, usages, open_});
        report.bits = fit < count && size > 0 ? maxBits : report.bits + size * fit;
    }

    uint32_t Global(unsigned tag) const
    {
        const auto found = globals_.find(tag);
        return found == globals_.end() ? 0 : found->second.number;
    }

    Layout layout_;
    std::map<unsigned, Item> globals_;
    std::vector<std::map<unsigned, Item>> saved_;
    std::vector<Item> locals_;
    std::vector<size_t> open_;
};

bool IsVariable(const Field& field)
{
    return field.flags / 2 % 2 == 1;
}

bool IsPadding(const Field& field)
{
    return field.flags % 2 == 1 && (!IsVariable(field) || field.usages.empty());
}

Value ValueOf(const Field& field, int64_t index, const std::vector<bool>& bits)
{
    const size_t kept = std::min<size_t>(bits.size(), 64);
    uint64_t number = 0;
    for (size_t i = 0; i < 64; ++i) {
        const bool isSignBit = i >= kept && field.minimum < 0;
        if (i < kept ? bits[i] : isSignBit && bits[kept - 1])
            number += uint64_t{1} << i;
    }
    const bool hasRange = field.minimum <= field.maximum && (field.minimum || field.maximum);
    const auto value = static_cast<int64_t>(number);
    const bool isHuge = field.minimum >= 0 && number > INT64_MAX;
    const bool inRange = !hasRange || (!isHuge && field.minimum <= value && value <= field.maximum);
    uint32_t usage = 0;
    if (IsVariable(field))
        usage = UsageAt(field, static_cast<uint64_t>(index));
    else if (inRange)
        usage = UsageAt(field, number - static_cast<uint64_t>(field.minimum));
    return {field.offset, index, usage, value, inRange};
}

} // namespace

Layout ReadLayout(std::span<const uint8_t> descriptor)
{
    Walk walk;
    for (const Item& item : Items(descriptor))
        walk.Take(item);
    return walk.End();
}

uint32_t UsageAt(const Field& field, uint64_t index)
{
    for (const auto& [first, last] : field.usages) {
        const uint64_t size = uint64_t{last} - first + 1;
        if (index < size)
            return first + static_cast<uint32_t>(index);
        index -= size;
    }
    return field.usages.empty() || !IsVariable(field) ? 0 : field.usages.back().second;
}

std::vector<Value> ReadReport(const Report& report, std::span<const uint8_t> bytes)
{
    std::vector<Value> values;
    size_t at = 0;
    for (const Field& field : report.fields) {
        at = static_cast<size_t>(field.firstBit);
        for (int64_t index = 0; index < field.count; ++index) {
            std::vector<bool> bits;
            for (; bits.size() < static_cast<size_t>(field.size); ++at) {
                if (at >= 8 * bytes.size())
                    break;
                bits.push_back(bytes[at / 8] >> at % 8 & 1);
            }
            if (bits.size() < static_cast<size_t>(field.size))
                break;
            if (!IsPadding(field))
                values.push_back(ValueOf(field, index, bits));
        }
    }
    return values;
}

} // namespace naive
