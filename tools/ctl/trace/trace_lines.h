// Calls to hidapi as text for people and as JSON. Pure.
#pragma once

#include "tools/ctl/trace/traffic_devices.h"
#include "tools/ctl/traffic/report_text.h"

namespace ctl {

// A call and what is known about it.
struct TracedCall {
    const Call& call;
    const TrafficDevice* device = nullptr; // null if it is unknown
    Words words = {};
    std::chrono::microseconds time{}; // since the start
    bool otherProcess = false;        // than the program's first one
};

// One line; `output`, which may be null, as for wordsText(). Empty for a call that has no line: a
// descriptor that was read.
[[nodiscard]] std::string traceLine(const TracedCall& traced, const Output* output);

// As documented in docs/kelprobectl-json.md.
[[nodiscard]] Json::Value traceJson(const TracedCall& traced);

} // namespace ctl
