#include "fuzz/naive_descriptor.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <set>

namespace naive {

namespace {

struct Item {
    unsigned tag;
    uint32_t value;
};

// Items up to the first one that is cut off. One without data has the value of the one before.
std::vector<Item> Items(std::span<const uint8_t> bytes)
{
    constexpr size_t sizes[] = {0, 1, 2, 4};
    std::vector<Item> items;
    uint32_t value = 0xFFFF;
    while (!bytes.empty()) {
        const unsigned prefix = bytes[0];
        const size_t size = sizes[prefix % 4];
        if (bytes.size() < 1 + size)
            break;
        if (size == 1)
            value = bytes[1];
        if (size == 2)
            value = bytes[1] + 256u * bytes[2];
        if (size == 4)
            value = bytes[1] + 256u * (bytes[2] + 256u * (bytes[3] + 256u * bytes[4]));
        items.push_back({prefix - prefix % 4, value});
        bytes = bytes.subspan(1 + size);
    }
    return items;
}

// Size and count are signed numbers of 32 bits; sums stay in the range of 64 bits.
int64_t Sum(int64_t bits, uint32_t size, uint32_t count)
{
    const auto product = int64_t{static_cast<int32_t>(size)} * static_cast<int32_t>(count);
    const __int128_t sum = __int128_t{bits} + product;
    const __int128_t low = std::numeric_limits<int64_t>::min();
    const __int128_t high = std::numeric_limits<int64_t>::max();
    return static_cast<int64_t>(std::clamp(sum, low, high));
}

struct Field {
    Direction direction;
    size_t report; // index
    uint32_t size;
    uint32_t count;
    std::vector<uint32_t> usages;
};

class Walk {
public:
    void Take(const Item& item)
    {
        if (depth_ > 0)
            TakeInCollection(item);
        else if (item.tag == 0x04)
            BeginPage(item.value);
        else if (isInPage_)
            TakeInPage(item);
    }

    std::map<Lookup, Control> End()
    {
        AddControls();
        return controls_;
    }

private:
    void BeginPage(uint32_t page)
    {
        page_ = page;
        isInPage_ = true;
        isFirstPage_ = pages_.insert(page).second;
        pageUsages_.clear();
        lastUsage_.reset();
    }

    void TakeInPage(const Item& item)
    {
        if (item.tag == 0x08) {
            lastUsage_.reset();
            if (pageUsages_.insert(item.value).second)
                lastUsage_ = item.value;
        } else if (item.tag == 0xA0) {
            collectionUsage_ = isFirstPage_ ? lastUsage_ : std::nullopt;
            lastUsage_.reset();
            depth_ = 1;
            reportIds_ = {0};
        } else if (item.tag == 0xC0) {
            isInPage_ = false;
        }
    }

    void TakeInCollection(const Item& item)
    {
        if (item.tag == 0x08)
            pending_.push_back(item.value);
        if (item.tag == 0x74)
            size_ = item.value;
        if (item.tag == 0x94)
            count_ = item.value;
        if (item.tag == 0x84 && reportIds_.back() != 0)
            reportIds_.push_back(0);
        if (item.tag == 0x84)
            reportIds_.back() = item.value;
        if (item.tag == 0x80)
            AddField(Direction::Input);
        if (item.tag == 0x90)
            AddField(Direction::Output);
        if (item.tag == 0x80 || item.tag == 0x90 || item.tag == 0xA0 || item.tag == 0xB0)
            pending_.clear();
        if (item.tag == 0xA0)
            ++depth_;
        if (item.tag == 0xC0 && --depth_ == 0)
            AddControls();
    }

    void AddField(Direction direction)
    {
        std::vector<uint32_t> usages;
        if (count_ <= pending_.size())
            usages.assign(pending_.rbegin(), pending_.rbegin() + count_);
        std::reverse(usages.begin(), usages.end());
        fields_.push_back({direction, reportIds_.size() - 1, size_, count_, usages});
    }

    // Adds the controls of the collection that ends here.
    void AddControls()
    {
        for (const Direction direction : {Direction::Input, Direction::Output})
            for (size_t report = 0; report < reportIds_.size() && collectionUsage_; ++report)
                AddControls(direction, report);
        fields_.clear();
        pending_.clear();
        collectionUsage_.reset();
    }

    void AddControls(Direction direction, size_t report)
    {
        constexpr int64_t maxBits = int64_t{65'534} * 8;
        std::set<uint32_t> usages;
        std::vector<std::pair<uint32_t, int64_t>> bits; // of each usage
        int64_t total = 0;
        for (const Field& field : fields_) {
            if (field.direction != direction || field.report != report)
                continue;
            int64_t bit = total;
            for (const uint32_t usage : field.usages) {
                if (usages.insert(usage).second)
                    bits.emplace_back(usage, bit);
                bit = Sum(bit, 1, 1);
            }
            total = Sum(total, field.size, field.count);
        }
        if (total < 0 || total > maxBits)
            return;
        for (const auto& [usage, bit] : bits)
            if (bit >= 0)
                controls_.try_emplace({direction, page_, *collectionUsage_, usage},
                    Control{static_cast<uint8_t>(reportIds_[report]),
                        static_cast<size_t>(total + 7) / 8, static_cast<size_t>(bit)});
    }

    std::map<Lookup, Control> controls_;

    // Outside collections.
    std::set<uint32_t> pages_;
    bool isInPage_ = false;
    bool isFirstPage_ = false; // of its value
    uint32_t page_ = 0;
    std::set<uint32_t> pageUsages_;
    std::optional<uint32_t> lastUsage_; // unless it was there before

    // In a top-level collection. Size and count stay until they are set again.
    int depth_ = 0;
    std::optional<uint32_t> collectionUsage_; // none if no lookup finds the collection
    uint32_t size_ = 0;
    uint32_t count_ = 0;
    std::vector<uint32_t> pending_;
    std::vector<uint32_t> reportIds_;
    std::vector<Field> fields_;
};

} // namespace

std::map<Lookup, Control> ReadDescriptor(std::span<const uint8_t> descriptor)
{
    Walk walk;
    for (const Item& item : Items(descriptor))
        walk.Take(item);
    return walk.End();
}

std::vector<uint8_t> Template(const Control& control)
{
    constexpr uint8_t bits[] = {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80};
    std::vector<uint8_t> report{control.reportId};
    report.resize(1 + control.reportSize);
    if (control.bit < 8 * control.reportSize)
        report[1 + control.bit / 8] = bits[control.bit % 8];
    return report;
}

} // namespace naive
