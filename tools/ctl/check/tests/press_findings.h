// Why a press did not have the effect that it should have. Pure.
#pragma once

#include "tools/ctl/check/action.h"
#include "tools/ctl/check/call_state.h"
#include "tools/ctl/check/device_facts.h"

namespace ctl {

struct PressCase {
    Action press;
    CallState before; // while a second call rings, the stack needs the hook switch's bit as well
};

// The report that the stack needs for the press.
[[nodiscard]] report::Bytes neededReport(const DeviceFacts& device, PressCase press);

// `received` are the input reports that came with the press. The outcome is a failure that names
// the first thing that is wrong with them; without anything wrong, a failure that says so.
[[nodiscard]] Outcome explainPress(
    const DeviceFacts& device, PressCase press, const Reports& received);

// Whether a press of this control was reported more than once: again without a release.
[[nodiscard]] bool isRepeated(
    const DeviceFacts& device, ControlId control, const Reports& received);

} // namespace ctl
