// A second, independent implementation of reading report descriptors and reports, to compare
// report/ with.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace naive {

using Range = std::pair<uint32_t, uint32_t>; // first and last usage, page in the upper half

struct Collection {
    uint32_t type;
    uint32_t usage;              // 0 if it has none
    std::optional<size_t> inner; // offset of the one around it
};

struct Field {
    size_t offset;
    uint32_t flags;
    int64_t firstBit;
    int64_t size;
    int64_t count; // that fit
    int64_t minimum;
    int64_t maximum;
    std::vector<Range> usages;
    std::vector<size_t> collections; // offsets, outermost first
};

struct ReportName {
    char kind; // 'I', 'O' or 'F'
    uint32_t id;

    auto operator<=>(const ReportName&) const = default;
};

struct Report {
    int64_t bits = 0;
    std::vector<Field> fields;
};

struct Layout {
    bool hasIds = false;
    std::map<ReportName, Report> reports;
    std::map<size_t, Collection> collections; // by offset
};

struct Value {
    size_t offset; // of the field's item
    int64_t index;
    uint32_t usage;
    int64_t number;
    bool inRange;

    bool operator==(const Value&) const = default;
};

// For descriptors of some thousand bytes; it is slow.
[[nodiscard]] Layout ReadLayout(std::span<const uint8_t> descriptor);

// The usage for a value's index, or for an array's value counted from the minimum; 0 if none.
[[nodiscard]] uint32_t UsageAt(const Field& field, uint64_t index);

// The values that are whole in the report. Reads it bit by bit.
[[nodiscard]] std::vector<Value> ReadReport(const Report& report, std::span<const uint8_t> bytes);

} // namespace naive
