// Short items of a HID report descriptor (USB Device Class Definition for HID 1.11, 6.2.2).
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace KX {

// An item's prefix with its two size bits cleared.
enum ItemTag : uint8_t {
    kTagUsagePage = 0x04,
    kTagUsage = 0x08,
    kTagReportSize = 0x74,
    kTagInput = 0x80,
    kTagReportId = 0x84,
    kTagOutput = 0x90,
    kTagReportCount = 0x94,
    kTagCollection = 0xA0,
    kTagFeature = 0xB0,
    kTagEndCollection = 0xC0,
};

struct Item {
    uint8_t tag;
    uint32_t value; // read as little-endian and unsigned for every tag
};

// Splits a report descriptor into short items. Pure. Does not own the bytes.
class ItemReader {
public:
    explicit ItemReader(std::span<const uint8_t> descriptor)
        : rest_(descriptor)
    {
        Consume();
    }

    // The next item, or null at the end. An item whose data would extend past the end counts as the
    // end. The reader owns the item, which is valid until Consume(). Long items are not recognised:
    // their bytes are read as short items.
    [[nodiscard]] const Item* Peek() const { return hasItem_ ? &item_ : nullptr; }

    // Moves to the item after the one that Peek() returns.
    void Consume();

private:
    std::span<const uint8_t> rest_; // after item_
    bool hasItem_ = false;
    // An item without data keeps the value of the item before it. This is deliberate: the trees of
    // existing devices depend on it.
    Item item_{0, 0xFFFF};
};

} // namespace KX
