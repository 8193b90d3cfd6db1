// The items of a report descriptor (USB Device Class Definition for HID 1.11, 6.2.2). Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace report {

// Prefixes of short items without their two size bits.
enum class ItemTag : uint8_t {
    kInput = 0x80,
    kOutput = 0x90,
    kCollection = 0xA0,
    kFeature = 0xB0,
    kEndCollection = 0xC0,

    kUsagePage = 0x04,
    kLogicalMinimum = 0x14,
    kLogicalMaximum = 0x24,
    kPhysicalMinimum = 0x34,
    kPhysicalMaximum = 0x44,
    kUnitExponent = 0x54,
    kUnit = 0x64,
    kReportSize = 0x74,
    kReportId = 0x84,
    kReportCount = 0x94,
    kPush = 0xA4,
    kPop = 0xB4,

    kUsage = 0x08,
    kUsageMinimum = 0x18,
    kUsageMaximum = 0x28,
    kDesignatorIndex = 0x38,
    kDesignatorMinimum = 0x48,
    kDesignatorMaximum = 0x58,
    kStringIndex = 0x78,
    kStringMinimum = 0x88,
    kStringMaximum = 0x98,
    kDelimiter = 0xA8,

    kLong = 0xFC, // long items, and the short items of this value, which are reserved: see isLong()
};

struct Item {
    ItemTag tag;                    // may have a value without an enumerator: those are reserved
    size_t offset;                  // of the prefix, from the descriptor's start
    std::span<const uint8_t> bytes; // all bytes of the item; they belong to the descriptor
    std::span<const uint8_t> data;  // those after the prefix, of a long item after its tag
    uint32_t value;                 // `data` as a little-endian number; 0 for a long item
    int32_t signedValue;            // the same as a number with a sign
    // The descriptor ends before the item does. `bytes` and `data` are what there is of it; such an
    // item has no effect. Only the last item can be truncated.
    bool truncated;

    enum class Type : uint8_t { kMain = 0x00, kGlobal = 0x04, kLocal = 0x08, kReserved = 0x0C };
    [[nodiscard]] Type type() const { return static_cast<Type>(bytes[0] & 0x0C); }

    [[nodiscard]] bool isLong() const { return bytes[0] == 0xFE; }
};

// "Usage Page"; empty for reserved items and long ones.
[[nodiscard]] std::string_view tagName(ItemTag tag);

// Reads a descriptor item by item. Takes any bytes; every byte is part of one item. Does not own
// them.
class ItemReader {
public:
    explicit ItemReader(std::span<const uint8_t> descriptor)
        : descriptor_(descriptor)
    {
    }

    // Reads the next item, whose `bytes` are not empty. False after the last item.
    [[nodiscard]] bool next(Item& item);

private:
    const std::span<const uint8_t> descriptor_;
    size_t offset_ = 0;
};

// All items of a descriptor.
[[nodiscard]] std::vector<Item> splitItems(std::span<const uint8_t> descriptor);

} // namespace report
