// Single bits of a device's reports. Pure.
#pragma once

#include "report/usage_names.h"

#include <optional>

namespace ctl {

// Counted from the first bit after the report id.
struct ReportBit {
    report::Layout::ReportKey report;
    uint64_t number;

    auto operator<=>(const ReportBit&) const = default;
};

// "bit 9 of Input report 3"
[[nodiscard]] std::string bitText(const ReportBit& bit);

// One value of a field. The field belongs to the layout.
struct FieldValue {
    const report::Field* field;
    uint64_t index;

    [[nodiscard]] ReportBit firstBit() const;
};

// The value that the bit is in. None if the device has no such report or field.
[[nodiscard]] std::optional<FieldValue> valueAt(const report::Layout& layout, const ReportBit& bit);

// What a value is: "Hook Switch (page Telephony)", "padding". Printable.
[[nodiscard]] std::string contentText(
    const std::optional<FieldValue>& value, const report::UsageNames& names);

// The one bit that is set in a report or mask after its first `skipped` bytes. None if no bit is.
[[nodiscard]] std::optional<uint64_t> setBit(std::span<const uint8_t> report, size_t skipped);

} // namespace ctl
