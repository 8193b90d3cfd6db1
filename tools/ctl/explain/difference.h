// Where the bit and the report that the stack uses for a control are not those that the descriptor
// gives. Pure.
#pragma once

#include "tools/ctl/explain/control_map.h"

namespace ctl {

class DifferenceFinder {
public:
    // Both must outlive the object.
    DifferenceFinder(const report::Layout& layout, const report::UsageNames& names);

    // `found` is the stack's template of the control, report id first (0 if it uses none).
    [[nodiscard]] std::vector<Remark> between(const Control& control, const KX::Bytes& found) const;

private:
    // A bit of a report, counted from the first one after the report id.
    struct Bit {
        report::Layout::ReportKey report;
        uint64_t number;

        auto operator<=>(const Bit&) const = default;
    };

    // One value of a field.
    struct Place {
        const report::Field* field;
        uint64_t index;

        [[nodiscard]] Bit firstBit() const;
    };

    using Notes = std::vector<Remark>;
    void addBitNotes(const Control& control, const Bit& bit, Notes& notes) const;
    void addPlaceNotes(const Place& place, Notes& notes) const;
    void addLengthNotes(
        report::Layout::ReportKey report, const KX::Bytes& found, Notes& notes) const;

    // The values of variable fields that are the control.
    [[nodiscard]] std::vector<Place> placesOf(const Control& control) const;
    [[nodiscard]] std::optional<Place> placeAt(const Bit& bit) const;
    [[nodiscard]] std::string contentOf(const std::optional<Place>& place) const;
    [[nodiscard]] static std::string bitText(const Bit& bit);

    const report::Layout& layout_;
    const report::UsageNames& names_;
};

} // namespace ctl
