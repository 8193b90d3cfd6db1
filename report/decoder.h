// The values in a report. Pure.
#pragma once

#include "report/bytes.h"
#include "report/layout.h"

namespace report {

// A report without its id. The bytes belong to the caller.
struct ReportView {
    Layout::ReportKey key;
    std::span<const uint8_t> payload;
};

// Reports in the two forms in which they are exchanged. On the wire (input reports as hidapi
// returns them, recordings) the id comes first only if the device uses ids. hidapi's functions that
// send take and return an id in any case, 0 if the device uses none. An empty report has id 0 and
// no payload.
[[nodiscard]] ReportView wireReport(
    const Layout& layout, ReportKind kind, std::span<const uint8_t> bytes);
[[nodiscard]] ReportView sentReport(ReportKind kind, std::span<const uint8_t> bytes);

struct Value {
    const Field* field = nullptr; // belongs to the layout
    uint32_t index = 0;           // in the field
    // Of a variable field: of this value. Of an array field: what the value stands for, 0, 0 if it
    // is outside the logical range (no control is asserted).
    Usage usage;
    int64_t value = 0;   // with a sign if the field has one; the low 64 bits of a longer field
    bool inRange = true; // within the logical range, or the field has none
};

struct DecodedReport {
    Layout::ReportKey key{};
    bool known = false;        // the device has a report of this kind and id
    size_t expectedSize = 0;   // of the payload in bytes
    size_t size = 0;           // of the payload in bytes, as received
    std::vector<Value> values; // those that are whole in the report, without padding, in order
};

// Takes any bytes. Linear in the number of the report's fields and the length of the report, times
// the logarithm of the number of usages of a field.
[[nodiscard]] DecodedReport decode(const Layout& layout, const ReportView& report);

} // namespace report
