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

// Names the controls other than the pressed one that are on in its report; empty if there are none.
// The hook switch may be on during a call.
[[nodiscard]] std::string otherControls(
    const DeviceFacts& device, PressCase press, const Reports& received);

// Whether the control is reported on again without a release between. Reports that cannot hold the
// control do not count.
[[nodiscard]] bool isRepeated(
    const DeviceFacts& device, ControlId control, const Reports& received);

// A sentence if the reports of one press are those of more than one; else empty.
[[nodiscard]] std::string repetition(
    const DeviceFacts& device, Action press, const Reports& received);

} // namespace ctl
