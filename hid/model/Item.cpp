#include "hid/model/Item.h"

namespace KX {

namespace {

constexpr uint8_t kSizeMask = 0x03;

} // namespace

void ItemReader::Consume()
{
    hasItem_ = false;
    if (rest_.empty())
        return;
    const uint8_t prefix = rest_.front();
    const size_t code = prefix & kSizeMask;
    const size_t size = code == 3 ? 4 : code;
    if (rest_.size() - 1 < size) {
        rest_ = {};
        return;
    }
    hasItem_ = true;
    item_.tag = static_cast<uint8_t>(prefix & ~kSizeMask);
    if (size > 0)
        item_.value = 0;
    for (size_t i = size; i > 0; --i)
        item_.value = item_.value << 8 | rest_[i];
    rest_ = rest_.subspan(1 + size);
}

} // namespace KX
