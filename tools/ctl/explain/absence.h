// Why the stack does not find a control. Pure.
#pragma once

#include "tools/ctl/explain/control_map.h"
#include "tools/ctl/explain/stack_reading.h"

namespace ctl {

// Compares the full reading of a descriptor with the stack's. Each place where the full reading has
// the control fails for at least one reason. The place with the fewest reasons is explained, so
// that the smallest change to the descriptor helps.
class AbsenceFinder {
public:
    // `layout` is that of the descriptor. It and `names` must outlive the object.
    AbsenceFinder(std::span<const uint8_t> descriptor, const report::Layout& layout,
        const report::UsageNames& names);

    // Sets the entry's reasons. To be called only for a control that the stack does not find.
    void explain(const Control& control, ControlEntry& entry) const;

private:
    // An item that gives the control, for a field.
    struct Place {
        const report::Field& field;
        const report::UsageRange& usage;
    };

    // What is around a collection, itself included.
    struct Surroundings {
        size_t top;     // index of the top-level collection, for the stack if it sees one
        bool inHeadset; // one of them is a Headset
    };

    // Whether the stack sees a top-level collection in it.
    [[nodiscard]] bool isSeen(size_t collection) const;

    // Reasons in the order in which they are to be removed.
    using Reasons = std::vector<Remark>;
    [[nodiscard]] Reasons reasonsFor(const Control& control, const Place& place) const;
    [[nodiscard]] Remark tooLong(report::Layout::ReportKey report) const;
    void addKindReason(const Control& control, const Place& place, Reasons& reasons) const;
    void addCollectionReason(const Place& place, Reasons& reasons) const;
    void addHeadsetReason(const report::Collection& headset, Reasons& reasons) const;
    void addUsageReason(const Place& place, Reasons& reasons) const;
    void addCountReason(const Place& place, Reasons& reasons) const;
    [[nodiscard]] const StackField* findField(const report::Field& field) const;
    [[nodiscard]] Remark notInFields(const Control& control) const;
    [[nodiscard]] std::string nameOf(const report::Collection& collection) const;

    const report::Layout& layout_;
    const report::UsageNames& names_;
    const StackReading stack_;
    std::vector<Surroundings> surroundings_; // of each collection of the layout
    std::optional<size_t> longItem_;         // offset of the first one
    std::vector<report::UsageRange> alternatives_;
};

} // namespace ctl
