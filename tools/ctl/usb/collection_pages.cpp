#include "tools/ctl/usb/collection_pages.h"

#include "report/layout.h"

#include <algorithm>

namespace ctl {

std::vector<uint16_t> collectionPages(std::span<const uint8_t> descriptor)
{
    std::vector<uint16_t> pages;
    const report::Layout layout = report::readLayout(descriptor);
    for (const report::Collection& collection : layout.collections) {
        const bool topLevel = collection.parent == report::Collection::kNone;
        const uint16_t page = collection.usage.page;
        if (topLevel && std::find(pages.begin(), pages.end(), page) == pages.end())
            pages.push_back(page);
    }
    return pages;
}

} // namespace ctl
