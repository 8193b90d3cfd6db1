// Short items of a HID report descriptor (USB Device Class Definition for HID 1.11, 6.2.2).
#pragma once

#include <cstdint>

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
    uint32_t value; // little-endian and unsigned, whatever the item means
};

} // namespace KX
