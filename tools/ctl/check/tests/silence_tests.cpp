// The device sends nothing of its controls unless they are used.
#include "tools/ctl/check/tests/conformance_tests.h"
#include "tools/ctl/check/tests/expectations.h"

#include <array>

namespace ctl {
namespace {

constexpr const char* kNoSilence = "A recording does not show what the device does by itself.";

// The first of the controls that is on in a report since `moment`; a failure then, else a pass.
template <size_t count>
Outcome expectOff(const Tester& tester, size_t moment, const std::array<ControlId, count>& controls,
    const std::string& situation)
{
    const DeviceFacts& device = tester.device();
    for (const Entry& entry : tester.since(moment, Entry::Kind::kReceived))
        for (const ControlId control : controls)
            if (device.isOn(control, entry.report))
                return failed("The device sent " + std::string(nameOf(control)) + ' ' + situation
                        + ", although nothing was pressed. Send a report of a control only when it "
                          "is used.",
                    {{"got", {device.input(entry.report)}}});
    return {};
}

constexpr std::array kAllInputs{
    ControlId::kHookSwitch, ControlId::kPhoneMute, ControlId::kLineBusy, ControlId::kFlash};
// During a call the hook switch may report that it follows the off-hook LED.
constexpr std::array kButtons{ControlId::kPhoneMute, ControlId::kLineBusy, ControlId::kFlash};

} // namespace

// Nothing has been pressed since the device was opened.
Outcome silentWhileIdle(Tester& tester)
{
    if (tester.subject().isRecording)
        return skipped(kNoSilence);
    (void)tester.enter(CallState::kIdle);
    tester.watch(tester.times().silence);
    return expectOff(tester, 0, kAllInputs, "while the meeting was idle");
}

// While a call rings, Kelprobe takes any report as an answer or a rejection. A report that comes as
// soon as the ring LED is set may escape it, but not reliably.
Outcome silentWhileRinging(Tester& tester)
{
    if (tester.subject().isRecording)
        return skipped(kNoSilence);
    if (!tester.device().has(ControlId::kRing))
        return tester.device().lacks(ControlId::kRing);
    (void)tester.enter(CallState::kIdle);
    const size_t moment = tester.now();
    tester.meeting().toggleRing();
    tester.watch(tester.times().silence);
    const auto received = tester.since(moment, Entry::Kind::kReceived);
    if (received.empty())
        return {};
    return failed(
        "The device sent a report by itself while a call was ringing. Kelprobe takes any "
        "report then as an answer or, without the hook switch's bit, as a rejection. Send "
        "nothing when the LEDs are set.",
        {{"got", {tester.device().input(received.front().report)}}});
}

Outcome silentDuringCall(Tester& tester)
{
    if (tester.subject().isRecording)
        return skipped(kNoSilence);
    (void)tester.enter(CallState::kIdle);
    const size_t moment = tester.now();
    tester.meeting().toggleRing();
    tester.meeting().togglePickup();
    tester.watch(tester.times().silence);
    const Outcome outcome = expectNoEvent(tester, moment, "during a call");
    return outcome.verdict == Outcome::Verdict::kPassed
        ? expectOff(tester, moment, kButtons, "during a call")
        : outcome;
}

} // namespace ctl
