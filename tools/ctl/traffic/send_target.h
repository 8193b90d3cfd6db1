// A device that a command sends reports to.
#pragma once

#include "tools/ctl/traffic/hid_connection.h"
#include "tools/ctl/traffic/report_text.h"

#include <optional>

namespace ctl {

// What is known about the device before it is opened.
struct SendTarget {
    // Chooses the device as chooseDevice() does. Throws Failure, also if its report descriptor
    // cannot be read.
    explicit SendTarget(const std::optional<std::string>& choice);

    // Prints one line: the kind of the report, its bytes, report id first, and what they mean.
    // Throws as Output::line() does.
    void print(report::ReportKind kind, std::span<const uint8_t> report, bool json) const;

    const DeviceEntry entry;
    const report::Layout layout;
    const report::UsageNames names;
};

} // namespace ctl
