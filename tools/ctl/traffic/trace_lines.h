// Calls to hidapi as text for people and as JSON. Pure.
#pragma once

#include "tools/ctl/cli/output.h"
#include "tools/ctl/traffic/traffic_devices.h"

#include <json/value.h>

namespace ctl {

// A call and what is known about it.
struct TracedCall {
    const Call& call;
    const TrafficDevice* device = nullptr; // null if it is unknown
    std::vector<report::ReportWords::Word> words = {};
    std::chrono::microseconds time{}; // since the start
    std::string processName = {};
    bool otherProcess = false; // than the program's first one
};

// "1209:0001".
[[nodiscard]] std::string idsText(uint16_t vendorId, uint16_t productId);

// The words of a report, separated by ", ". Those that changed are strong if `output` has colours,
// otherwise a * follows them. "nothing on" if there are none.
[[nodiscard]] std::string wordsText(
    const std::vector<report::ReportWords::Word>& words, const Output* output);

// One line; `output`, which may be null, as for wordsText(). Empty for a call that has no line: a
// descriptor that was read.
[[nodiscard]] std::string traceLine(const TracedCall& traced, const Output* output);

// As documented in docs/kelprobectl-json.md.
[[nodiscard]] Json::Value traceJson(const TracedCall& traced);

} // namespace ctl
