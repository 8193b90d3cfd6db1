// Where the stack's reading of a report descriptor takes its collections, usages and report counts
// from. Pure.
//
// The masks and reports that the stack uses come from the stack's own code. This is the additional
// knowledge that is needed to explain what that code does not find: it follows the rules of
// hid/model/DescriptorParser and hid/model/UsagePage and changes with them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace ctl {

// A top-level collection as the stack sees it.
struct StackCollection {
    size_t offset = 0;             // of its item in the descriptor
    uint32_t page = 0;             // of the top-level Usage Page item before it
    size_t pageIndex = 0;          // of that item among the top-level Usage Page items
    std::optional<uint32_t> usage; // of the Usage item directly before it, if there is one
};

// An Input or Output item in a top-level collection.
struct StackField {
    size_t offset = 0;     // of its item in the descriptor
    size_t collection = 0; // index
    uint32_t size = 0;     // bits of a value
    uint32_t count = 0;
    std::vector<size_t> usages; // offsets of the Usage items for it

    // Whether the stack takes the usage that the item at this offset gives. It takes none if there
    // are fewer than values, and the last ones if there are more.
    [[nodiscard]] bool takes(size_t usageOffset) const;
};

struct StackReading {
    std::vector<StackCollection> collections;
    std::vector<StackField> fields;
    std::optional<size_t> telephonyPage; // index of the first top-level Usage Page (Telephony)
    // Index of the one collection in which the stack looks for controls.
    std::optional<size_t> headset;

    // Null if there is none at that offset.
    [[nodiscard]] const StackCollection* collectionAt(size_t offset) const;
    [[nodiscard]] const StackField* fieldAt(size_t offset) const;
};

// Takes any bytes, in time and memory linear in their number.
[[nodiscard]] StackReading readAsStack(std::span<const uint8_t> descriptor);

} // namespace ctl
