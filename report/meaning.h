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

    // Words for each value that is not 0, and for each that became 0. Then one for each thing that
    // is wrong with the report: an id that the device does not have, a wrong length, values out of
    // range. Remembers the report.
    //
    // A field that holds data rather than controls has one word with its bytes, "Page 0xff30
    // 0x0001: 05 a2". Those are fields of several values without usages or with one for all, and on
    // vendor pages also arrays and fields of values of a byte or more.
    [[nodiscard]] std::vector<Word> describe(const ReportView& report);

    // The words in one line, separated by ", ", with `changedMark` after those that changed. Never
    // empty: "nothing on" if there are no words.
    [[nodiscard]] std::string line(const ReportView& report, std::string_view changedMark = "");

private:
    struct Last {
        std::vector<Value> values;
        std::vector<std::string> faults;
    };

    [[nodiscard]] std::vector<std::string> faultsOf(const DecodedReport& report) const;

    const Layout& layout_;
    const UsageNames& names_;
    std::map<Layout::ReportKey, Last> last_;
};

} // namespace report
