// Splits a report descriptor into short items. Pure; does not own the bytes.
#pragma once

#include "Item.h"

#include <cstddef>
#include <optional>
#include <span>

namespace KX {

class ItemReader {
public:
    explicit ItemReader(std::span<const uint8_t> descriptor)
        : descriptor_(descriptor)
    {
    }

    // The next item, left in place; nothing at the end, and nothing more once an item's data runs
    // past the end. Long items are not recognised: their bytes read as short ones.
    [[nodiscard]] std::optional<Item> Peek() const;

    // Takes the item that Peek() showed.
    void Consume();

private:
    [[nodiscard]] size_t DataSize() const;

    std::span<const uint8_t> descriptor_;
    size_t position_ = 0;
    // An item without data has the value of the item before it; devices are known by the trees
    // that this makes, so it stays.
    uint32_t lastValue_ = 0xFFFF;
};

} // namespace KX
