// Splits a report descriptor into short items. Pure; does not own the bytes.
#pragma once

#include "hid/model/Item.h"

#include <cstddef>
#include <span>

namespace KX {

class ItemReader {
public:
    explicit ItemReader(std::span<const uint8_t> descriptor)
        : rest_(descriptor)
    {
        Consume();
    }

    // The next item, which is the reader's and holds until Consume(); null at the end, and from
    // where an item's data would run past the end. Long items are not recognised: their bytes read
    // as short ones.
    [[nodiscard]] const Item* Peek() const { return hasItem_ ? &item_ : nullptr; }

    // Takes the item that Peek() showed.
    void Consume();

private:
    std::span<const uint8_t> rest_; // behind item_
    bool hasItem_ = false;
    // An item without data has the value of the item before it; devices are known by the trees
    // that this makes, so it stays.
    Item item_{0, 0xFFFF};
};

} // namespace KX
