// A second, independent implementation of reading report descriptors, to compare hid/model with.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <span>
#include <vector>

namespace naive {

enum class Direction { Input, Output };

// A question to a descriptor: which bit belongs to `usage`, in the collection that follows the
// first Usage item `collectionUsage` of the first page `page`?
struct Lookup {
    Direction direction;
    uint32_t page;
    uint32_t collectionUsage;
    uint32_t usage;

    auto operator<=>(const Lookup&) const = default;
};

struct Control {
    uint8_t reportId;
    size_t reportSize; // bytes, without the report id
    size_t bit;        // may be outside the report, which then has no bit set
};

// All lookups that find something. There is no tree: one walk over the items.
[[nodiscard]] std::map<Lookup, Control> ReadDescriptor(std::span<const uint8_t> descriptor);

// The report with the control's bit set, report id first.
[[nodiscard]] std::vector<uint8_t> Template(const Control& control);

} // namespace naive
