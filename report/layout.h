// The fields of a device's reports, as its report descriptor gives them. Pure.
//
// Follows the USB Device Class Definition for HID 1.11 completely. This is the reading that a
// device's maker can expect of any host. The one that Kelprobe's stack uses is in hid/model; the
// two are compared in order to explain what the stack does not find.
#pragma once

#include "report/item.h"

#include <map>
#include <optional>
#include <string>

namespace report {

// Usage pages, as the HID Usage Tables number them.
inline constexpr uint16_t kLedPage = 0x08;
inline constexpr uint16_t kButtonPage = 0x09;
inline constexpr uint16_t kTelephonyPage = 0x0b;
inline constexpr uint16_t kConsumerPage = 0x0c;

struct Usage {
    uint16_t page = 0;
    uint16_t id = 0;

    auto operator<=>(const Usage&) const = default;
};

// The usages from `minimum` to `maximum`, which are on the same page. One usage is a range whose
// two ends are equal.
struct UsageRange {
    Usage minimum;
    uint16_t maximum = 0;  // id
    bool isRange = false;  // given by Usage Minimum and Usage Maximum
    bool extended = false; // an item of four bytes gave the page
    size_t offset = 0;     // of the (last) item in the descriptor
    uint64_t index = 0;    // of `minimum` among the usages of the field
};

struct Collection {
    static constexpr size_t kNone = static_cast<size_t>(-1);

    uint8_t type = 0; // 0 physical, 1 application, 2 logical, ...
    Usage usage;      // 0, 0 if it has none
    bool extendedUsage = false;
    size_t parent = kNone; // index in Layout::collections, kNone for a top-level collection
    size_t offset = 0;     // of its item in the descriptor
};

enum class ReportKind : uint8_t { kInput, kOutput, kFeature };

// The main item that adds such fields: "Input", "Output" or "Feature".
[[nodiscard]] const char* itemName(ReportKind kind);

// In running text: "input", "output" or "feature".
[[nodiscard]] const char* kindName(ReportKind kind);

// What one Input, Output or Feature item adds to a report: `count` values of `size` bits.
struct Field {
    // Flags of the item (6.2.2.5).
    static constexpr uint32_t kConstant = 1u << 0;
    static constexpr uint32_t kVariable = 1u << 1;
    static constexpr uint32_t kRelative = 1u << 2;
    static constexpr uint32_t kWrap = 1u << 3;
    static constexpr uint32_t kNonlinear = 1u << 4;
    static constexpr uint32_t kNoPreferredState = 1u << 5;
    static constexpr uint32_t kNullState = 1u << 6;
    static constexpr uint32_t kVolatile = 1u << 7; // not of Input items
    static constexpr uint32_t kBufferedBytes = 1u << 8;

    ReportKind kind = ReportKind::kInput;
    uint8_t reportId = 0; // 0 in a device without report ids
    uint32_t flags = 0;
    uint32_t bitOffset = 0; // of the first value, counted from the first bit after the report id
    uint32_t size = 0;      // bits of a value
    uint32_t count = 0;     // values that fit into the longest report; may be less than declared,
                            // and is 0 if the size is 0
    int64_t logicalMinimum = 0;
    int64_t logicalMaximum = 0;            // unsigned unless the minimum is negative
    std::vector<UsageRange> usages;        // in order, including those that are more than `count`
    size_t collection = Collection::kNone; // the innermost one
    size_t offset = 0;                     // of the item in the descriptor

    [[nodiscard]] bool isConstant() const { return flags & kConstant; }
    [[nodiscard]] bool isVariable() const { return flags & kVariable; } // else it is an array

    // Bits without a meaning. A constant field with usages is not padding: the host must not write
    // it, but devices declare buttons as constant, too.
    [[nodiscard]] bool isPadding() const
    {
        return isConstant() && (!isVariable() || usages.empty());
    }

    [[nodiscard]] bool isSigned() const { return logicalMinimum < 0; }

    // False if the descriptor gives no logical minimum and maximum, or no value is between them.
    [[nodiscard]] bool hasLogicalRange() const;

    // The index for which usageAt() gives this usage, the lowest if there are several. Takes time
    // linear in the number of ranges.
    [[nodiscard]] std::optional<uint64_t> indexOf(Usage usage) const;

    // The number of usages, which may be larger or smaller than the number of values.
    [[nodiscard]] uint64_t usageCount() const;

    // The usage of value `index` of a variable field, or the usage that element value `index`
    // (counted from the logical minimum) of an array field stands for. With fewer usages than
    // values the last usage counts for the rest. 0, 0 if the field has no usages, or for an array
    // value without one. Takes time logarithmic in the number of ranges.
    [[nodiscard]] Usage usageAt(uint64_t index) const;
};

// A part of the descriptor that does not follow the definition. The layout is what a lenient host
// makes of it.
struct Problem {
    size_t offset = 0; // of the item in the descriptor
    std::string text;  // one sentence without a full stop: "End Collection without a Collection"
};

struct Layout {
    // A report can be 65,535 bytes long with its id: USB gives its length in 16 bits.
    static constexpr uint32_t kMaxReportBits = 65'534 * 8;

    struct ReportKey {
        ReportKind kind;
        uint8_t id;

        auto operator<=>(const ReportKey&) const = default;
    };

    bool usesReportIds = false;               // every report starts with its id
    std::vector<Collection> collections;      // in order of their beginning
    std::vector<Field> fields;                // in order of their items
    std::map<ReportKey, uint32_t> reportBits; // of each report, without its id
    // The fields of each report: indices in `fields`, in the same order.
    std::map<ReportKey, std::vector<size_t>> reportFields;
    std::vector<Problem> problems; // in the descriptor's order

    // The length in bytes of a report as it is on the wire, with its id if the device uses ids. No
    // value if there is no such report.
    [[nodiscard]] std::optional<size_t> wireSize(ReportKey report) const;

    // The collections around a field, outermost first. Takes time linear in their number.
    [[nodiscard]] std::vector<const Collection*> collectionPath(const Field& field) const;
};

// Takes any bytes, in time and memory linear in their number.
[[nodiscard]] Layout readLayout(std::span<const uint8_t> descriptor);

} // namespace report
