// The entries of a journal as text and as JSON.
#pragma once

#include "report/meaning.h"
#include "tools/ctl/cli/output.h"
#include "tools/ctl/meeting/journal.h"

#include <json/forwards.h>

#include <optional>
#include <string>

namespace ctl {

// For the entries of one device in their order, each by one of the two. Times count from the first.
class EntryWords {
public:
    // Takes any descriptor. Without one, reports have no meaning in words.
    explicit EntryWords(const report::Bytes& descriptor);
    EntryWords(const EntryWords&) = delete;
    EntryWords& operator=(const EntryWords&) = delete;

    // One line: time, what happened, the report's bytes and meaning. With the styles of `output`.
    [[nodiscard]] std::string line(const Entry& entry, const Output& output);

    // The object that docs/kelprobectl-json.md describes.
    [[nodiscard]] Json::Value json(const Entry& entry);

private:
    [[nodiscard]] std::chrono::microseconds sinceFirst(const Entry& entry);
    [[nodiscard]] std::vector<report::ReportWords::Word> words(const Entry& entry);

    const report::Layout layout_;
    const report::UsageNames names_;
    report::ReportWords words_;
    std::optional<std::chrono::microseconds> first_;
};

// Why the device did not take a report or could not be opened.
[[nodiscard]] std::string failureText(const Entry& entry);

} // namespace ctl
