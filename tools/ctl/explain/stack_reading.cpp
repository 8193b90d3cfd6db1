#include "tools/ctl/explain/stack_reading.h"

#include "hid/model/Item.h"
#include "tools/ctl/explain/control.h"

#include <algorithm>
#include <utility>

namespace ctl {
namespace {

size_t itemSize(uint8_t prefix)
{
    const size_t code = prefix & 0x03;
    return 1 + (code == 3 ? 4 : code);
}

template <typename Element>
const Element* elementAt(const std::vector<Element>& list, size_t offset)
{
    const auto found = std::ranges::lower_bound(list, offset, {}, &Element::offset);
    return found != list.end() && found->offset == offset ? &*found : nullptr;
}

class Reader {
public:
    void handleItem(const KX::Item& item, size_t offset)
    {
        if (depth_ > 0)
            handleInCollection(item, offset);
        else if (item.tag == KX::kTagUsagePage)
            beginPage(item.value);
        else if (inPage_)
            handleInPage(item, offset);
    }

    StackReading result;

private:
    void beginPage(uint32_t page)
    {
        inPage_ = true;
        page_ = page;
        usage_.reset();
        isHeadset_ = false;
        const size_t index = pages_++;
        if (page == kTelephonyPage && !result.telephonyPage)
            result.telephonyPage = index;
    }

    void handleInPage(const KX::Item& item, size_t offset)
    {
        if (item.tag == KX::kTagEndCollection) {
            inPage_ = false; // everything before the next Usage Page item is skipped
        } else if (item.tag == KX::kTagUsage) {
            usage_ = item.value;
            isHeadset_ = isFirstHeadset(item.value);
        } else if (item.tag == KX::kTagCollection) {
            if (isHeadset_)
                result.headset = result.collections.size();
            result.collections.push_back({offset, page_, pages_ - 1, usage_});
            usage_.reset();
            isHeadset_ = false;
            depth_ = 1;
            usages_.clear();
        }
    }

    // Whether this Usage item is the one whose collection the stack searches.
    bool isFirstHeadset(uint32_t usage)
    {
        if (result.telephonyPage != pages_ - 1 || usage != kHeadset || headsetSeen_)
            return false;
        headsetSeen_ = true;
        return true;
    }

    void handleInCollection(const KX::Item& item, size_t offset)
    {
        switch (item.tag) {
        case KX::kTagReportSize:
            size_ = item.value;
            break;
        case KX::kTagReportCount:
            count_ = item.value;
            break;
        case KX::kTagUsage:
            usages_.push_back(offset);
            break;
        case KX::kTagInput:
        case KX::kTagOutput:
            result.fields.push_back(
                {offset, result.collections.size() - 1, size_, count_, std::exchange(usages_, {})});
            break;
        case KX::kTagFeature:
            usages_.clear();
            break;
        case KX::kTagCollection:
            usages_.clear();
            ++depth_;
            break;
        case KX::kTagEndCollection:
            --depth_;
            break;
        default:
            break;
        }
    }

    bool inPage_ = false; // a Usage Page item has come and its items are being read
    uint32_t page_ = 0;
    size_t pages_ = 0; // number of top-level Usage Page items
    std::optional<uint32_t> usage_;
    bool isHeadset_ = false; // usage_ is that of the collection that the stack searches
    bool headsetSeen_ = false;
    size_t depth_ = 0;
    uint32_t size_ = 0;
    uint32_t count_ = 0;
    std::vector<size_t> usages_; // offsets
};

} // namespace

bool StackField::takes(size_t usageOffset) const
{
    if (usages.size() < count)
        return false;
    const auto lastOnes = usages.end() - static_cast<ptrdiff_t>(count);
    return std::find(lastOnes, usages.end(), usageOffset) != usages.end();
}

const StackCollection* StackReading::collectionAt(size_t offset) const
{
    return elementAt(collections, offset);
}

const StackField* StackReading::fieldAt(size_t offset) const
{
    return elementAt(fields, offset);
}

StackReading readAsStack(std::span<const uint8_t> descriptor)
{
    Reader reader;
    KX::ItemReader items(descriptor);
    for (size_t offset = 0; const KX::Item* item = items.Peek(); items.Consume()) {
        reader.handleItem(*item, offset);
        offset += itemSize(descriptor[offset]);
    }
    return std::move(reader.result);
}

} // namespace ctl
