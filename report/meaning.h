// Reports in words. Pure.
#pragma once

#include "report/decoder.h"
#include "report/usage_names.h"

namespace report {

// Puts the reports of one device into words, and marks what changed since the report before it of
// the same kind and id.
class ReportWords {
public:
    // Both must outlive the object.
    ReportWords(const Layout& layout, const UsageNames& names);

    struct Word {
        std::string text;     // "Hook Switch on", "Volume 12", "Phone Key 5 pressed"
        bool changed = false; // since the last report; everything has changed in the first one
    };

    // Words for each value that is not 0, and for each that became 0. Then one for whatever is
    // wrong with the report: an id that the device does not have, a wrong length, a value out of
    // range. Remembers the report.
    [[nodiscard]] std::vector<Word> describe(const ReportView& report);

    // The words in one line, separated by ", ", with `changedMark` after those that changed. Never
    // empty: "nothing on" if there are no words.
    [[nodiscard]] std::string line(const ReportView& report, std::string_view changedMark = "");

private:
    const Layout& layout_;
    const UsageNames& names_;
    std::map<Layout::ReportKey, std::vector<Value>> last_;
};

} // namespace report
