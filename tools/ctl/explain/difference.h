// Where the bit and the report that the stack uses for a control are not those that the descriptor
// gives. Pure.
#pragma once

#include "tools/ctl/explain/control_map.h"
#include "tools/ctl/explain/report_bit.h"

namespace ctl {

class DifferenceFinder {
public:
    // Both must outlive the object.
    DifferenceFinder(const report::Layout& layout, const report::UsageNames& names);

    // `found` is the stack's template of the control, report id first (0 if it uses none).
    [[nodiscard]] std::vector<Remark> between(const Control& control, const KX::Bytes& found) const;

private:
    using Notes = std::vector<Remark>;
    void addBitNotes(const Control& control, const ReportBit& bit, Notes& notes) const;
    void addFieldNotes(const report::Field& field, Notes& notes) const;
    void addLengthNotes(
        report::Layout::ReportKey report, const KX::Bytes& found, Notes& notes) const;

    // The values of variable fields that are the control.
    [[nodiscard]] std::vector<FieldValue> valuesOf(const Control& control) const;

    const report::Layout& layout_;
    const report::UsageNames& names_;
};

} // namespace ctl
