// What a test expects of the output reports and of the events.
#pragma once

#include "tools/ctl/check/tester.h"

namespace ctl {

// Passes if since `moment` exactly these reports were sent, in this order, and the device took each
// of them. Empty reports are those that the stack does not have; without any other the test is
// skipped, with `control` as the reason.
[[nodiscard]] Outcome expectSent(
    const Tester& tester, size_t moment, const Reports& expected, ControlId control);

// Passes if the LEDs are as after these reports, whatever was sent before, and the device took
// every report. After a press two threads send, so that the order is not fixed.
[[nodiscard]] Outcome expectLeds(const Tester& tester, size_t moment, const Reports& expected);

// Passes if there was no event.
[[nodiscard]] Outcome expectNoEvent(
    const Tester& tester, size_t moment, const std::string& situation);

// Asks the person whether the LED is on, after `outcome` has passed.
[[nodiscard]] Outcome expectVisible(Tester& tester, Outcome outcome, const std::string& question);

// "accept, reject"
[[nodiscard]] std::string eventNames(const std::vector<Entry::Kind>& events);

} // namespace ctl
