#include "hid/model/DescriptorParser.h"

#include "hid/model/Collection.h"
#include "hid/model/Usage.h"
#include "hid/model/UsagePage.h"

namespace KX {

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
        // Both are left for the root level, which opens the next page or skips the stray end.
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
        contents.Take(*item);
        reader_.Consume();
    }
}

} // namespace KX
