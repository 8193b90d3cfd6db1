// Parts of sentences about descriptors. Pure.
#pragma once

#include "report/usage_names.h"

namespace ctl {

// "0x002a"
[[nodiscard]] std::string offsetText(size_t offset);

// "Input report 3"; "the Input report" without an id
[[nodiscard]] std::string reportName(report::Layout::ReportKey key);

// "1 byte", "3 bytes"
[[nodiscard]] std::string counted(uint64_t number, const std::string& noun);

// With blanks up to `width`, and at least one.
[[nodiscard]] std::string padded(std::string text, size_t width);

// "a", "a and b", "a, b and c"
[[nodiscard]] std::string listed(const std::vector<std::string>& words);

// "Headset" if the collection has a usage that is not 0, else "unnamed". Printable.
[[nodiscard]] std::string collectionName(
    const report::Collection& collection, const report::UsageNames& names);

// The usage as in UsageNames::fullUsage(). Printable.
[[nodiscard]] std::string usageName(report::Usage usage, const report::UsageNames& names);

} // namespace ctl
