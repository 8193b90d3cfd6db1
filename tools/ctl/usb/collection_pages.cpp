#include "tools/ctl/usb/collection_pages.h"

#include "report/item.h"

#include <algorithm>

namespace ctl {
namespace {

constexpr size_t kExtendedSize = 4; // a usage with its page

} // namespace

std::vector<uint16_t> collectionPages(std::span<const uint8_t> descriptor)
{
    std::vector<uint16_t> pages;
    uint16_t page = 0;
    uint16_t usagePage = 0; // of the last usage
    size_t depth = 0;
    for (const report::Item& item : report::splitItems(descriptor)) {
        if (item.tag == report::ItemTag::kUsagePage) {
            page = static_cast<uint16_t>(item.value);
        } else if (item.tag == report::ItemTag::kUsage) {
            usagePage = item.data.size() == kExtendedSize ? static_cast<uint16_t>(item.value >> 16)
                                                          : page;
        } else if (item.tag == report::ItemTag::kEndCollection && depth > 0) {
            --depth;
        } else if (item.tag == report::ItemTag::kCollection && depth++ == 0
            && std::find(pages.begin(), pages.end(), usagePage) == pages.end()) {
            pages.push_back(usagePage);
        }
    }
    return pages;
}

} // namespace ctl
