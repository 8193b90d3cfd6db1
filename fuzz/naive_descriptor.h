// A second reading of report descriptors, written apart from hid/model to be compared with it.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <span>
#include <vector>

namespace naive {

enum class Direction { Input, Output };

// The question that a descriptor answers: which bit belongs to a usage, in the collection that
// stands after the first Usage item `collectionUsage` of the first page `page`?
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
