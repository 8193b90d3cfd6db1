// What a test expects of the output reports and of the events. Pure.
#pragma once

#include "tools/ctl/check/device_facts.h"
#include "tools/ctl/check/watched_step.h"

namespace ctl {

// Passes if exactly these reports were sent, in this order, and the device took each of them. Empty
// reports are those that the stack does not have; without any other the test is skipped, with
// `control` as the reason.
[[nodiscard]] Outcome expectSent(
    const DeviceFacts& device, const Entries& entries, const Reports& expected, ControlId control);

// Passes if the LEDs are as after these reports, whatever was sent before, and the device took
// every report. After a press two threads send, so that the order is not fixed.
[[nodiscard]] Outcome expectLeds(
    const DeviceFacts& device, const Entries& entries, const Reports& expected);

// Passes if there was no event.
[[nodiscard]] Outcome expectNoEvent(
    const DeviceFacts& device, const Entries& entries, const std::string& situation);

// The failure of a test for which the meeting could not be brought into its state, given what
// happened meanwhile.
[[nodiscard]] Outcome cannotEnter(const DeviceFacts& device, const Entries& entering);

// "accept, reject"; of many only the first.
[[nodiscard]] std::string eventNames(const std::vector<Entry::Kind>& events);

} // namespace ctl
