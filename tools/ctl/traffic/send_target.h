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

    // One line: the kind of the report, its bytes, report id first, and what they mean.
    [[nodiscard]] std::string describe(
        report::ReportKind kind, std::span<const uint8_t> report) const;

    const DeviceEntry entry;
    const report::Layout layout;
    const report::UsageNames names;
};

} // namespace ctl
