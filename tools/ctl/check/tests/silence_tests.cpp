// The device sends nothing of its controls unless they are used.
#include "tools/ctl/check/tests/conformance_tests.h"
#include "tools/ctl/check/tests/expectations.h"

#include <array>

namespace ctl {
namespace {

constexpr const char* kNoSilence = "A recording does not show what the device does by itself.";

// A failure if one of the controls is on in a report, else a pass.
template <size_t count>
Outcome expectOff(const DeviceFacts& device, const Entries& entries,
    const std::array<ControlId, count>& controls, const std::string& situation)
{
    for (const Entry& entry : ofKind(entries, Entry::Kind::kReceived))
        for (const ControlId control : controls)
            if (device.isOn(control, entry.report))
                return failed("The device sent " + std::string(nameOf(control)) + ' ' + situation
                        + ", although nothing was pressed. Send a report of a control only when it "
                          "is used.",
                    {{"got", {device.input(entry.report)}}});
    return {};
}

// During a call the hook switch may report that it follows the off-hook LED.
constexpr std::array kButtons{ControlId::kPhoneMute, ControlId::kLineBusy, ControlId::kFlash};

} // namespace

// Nothing has been pressed since the device was opened.
Outcome silentWhileIdle(Tester& tester)
{
    if (tester.subject().isRecording)
        return skipped(kNoSilence);
    return expectOff(tester.device(), tester.watchStep(Step::kOpen).entries, kInputControls,
        "while the meeting was idle");
}

// While a call rings, Kelprobe takes any report as an answer or a rejection. A report that comes as
// soon as the ring LED is set may escape it, but not reliably.
Outcome silentWhileRinging(Tester& tester)
{
    if (tester.subject().isRecording)
        return skipped(kNoSilence);
    const DeviceFacts& device = tester.device();
    if (!device.has(ControlId::kRing))
        return device.lacks(ControlId::kRing);
    const Entries received = ofKind(tester.watchStep(Step::kRing).entries, Entry::Kind::kReceived);
    if (received.empty())
        return {};
    return failed(
        "The device sent a report by itself while a call was ringing. Kelprobe takes any "
        "report then as an answer or, without the hook switch's bit, as a rejection. Send "
        "nothing when the LEDs are set.",
        {{"got", {device.input(received.front().report)}}});
}

Outcome silentDuringCall(Tester& tester)
{
    if (tester.subject().isRecording)
        return skipped(kNoSilence);
    const Entries& entries = tester.watchStep(Step::kPickUp).entries;
    const Outcome outcome = expectNoEvent(tester.device(), entries, "during a call");
    return outcome.verdict == Outcome::Verdict::kPassed
        ? expectOff(tester.device(), entries, kButtons, "during a call")
        : outcome;
}

} // namespace ctl
