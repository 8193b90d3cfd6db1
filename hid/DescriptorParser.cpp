#include "DescriptorParser.h"

#include "Collection.h"
#include "Usage.h"
#include "UsagePage.h"

namespace KX {

void DescriptorParser::ParseRoot(IData& root)
{
    while (const auto item = reader_.Peek()) {
        reader_.Consume();
        if (item->tag != kTagUsagePage)
            continue;
        auto page = std::make_unique<UsagePage>(*item);
        ParsePage(*page);
        root.AddChild(std::move(page));
    }
}

void DescriptorParser::ParsePage(IData& page)
{
    while (const auto item = reader_.Peek()) {
        // Both are left for the root level, which opens the next page or skips the stray end.
        if (item->tag == kTagUsagePage || item->tag == kTagEndCollection)
            return;
        reader_.Consume();
        if (item->tag == kTagUsage) {
            page.AddChild(std::make_unique<Usage>(*item));
        } else if (item->tag == kTagCollection) {
            ++depth_;
            auto collection = std::make_unique<Collection>(*item);
            ParseCollection(*collection, page.value);
            page.AddChild(std::move(collection));
        }
    }
}

void DescriptorParser::ParseCollection(IData& collection, uint32_t page)
{
    const size_t entryDepth = depth_;
    CollectionContents contents(collection, page, shape_);
    while (depth_ >= entryDepth) {
        const auto item = reader_.Peek();
        if (!item)
            return;
        reader_.Consume();
        if (item->tag == kTagCollection)
            ++depth_;
        else if (item->tag == kTagEndCollection)
            --depth_;
        contents.Take(*item);
    }
}

} // namespace KX
