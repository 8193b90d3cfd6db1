#include "ItemReader.h"

namespace KX {

namespace {

constexpr uint8_t kSizeMask = 0x03;

} // namespace

size_t ItemReader::DataSize() const
{
    const size_t code = descriptor_[position_] & kSizeMask;
    return code == 3 ? 4 : code;
}

std::optional<Item> ItemReader::Peek() const
{
    if (position_ >= descriptor_.size())
        return std::nullopt;
    const size_t size = DataSize();
    if (descriptor_.size() - position_ - 1 < size)
        return std::nullopt;

    const auto tag = static_cast<uint8_t>(descriptor_[position_] & ~kSizeMask);
    if (size == 0)
        return Item{tag, lastValue_};
    uint32_t value = 0;
    for (size_t i = size; i > 0; --i)
        value = value << 8 | descriptor_[position_ + i];
    return Item{tag, value};
}

void ItemReader::Consume()
{
    if (const auto item = Peek()) {
        lastValue_ = item->value;
        position_ += 1 + DataSize();
    }
}

} // namespace KX
