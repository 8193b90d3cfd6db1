// The LEDs follow the meeting.
#include "tools/ctl/check/tests/conformance_tests.h"
#include "tools/ctl/check/tests/expectations.h"

#include <algorithm>

namespace ctl {
namespace {

constexpr const char* kNoLamps = "A recording does not show what the device makes of reports.";

// What the stack sends to hang up and to go off-hook.
Reports onHook(const KX::LedReports& leds)
{
    return {leds.ringOff, leds.offHookOff, leds.holdOff};
}

Reports offHook(const KX::LedReports& leds)
{
    return {leds.ringOff, leds.offHookOn};
}

Outcome cannotEnter()
{
    return failed("The meeting could not be brought into the state for this test, because the "
                  "device sent a report by itself.");
}

using Operation = void (HidController::*)();

// Brings the meeting into `before`, performs the operation and expects these reports.
Outcome expectAfter(Tester& tester, CallState before, Operation operation, const Reports& expected,
    ControlId control)
{
    if (tester.subject().isRecording)
        return skipped(kNoLamps);
    if (!tester.enter(before))
        return cannotEnter();
    const size_t moment = tester.now();
    (tester.meeting().*operation)();
    tester.watch(tester.times().settle());
    // First: after an event the stack sends further reports.
    const Outcome silent = expectNoEvent(tester, moment, "after its LEDs were set");
    return silent.verdict == Outcome::Verdict::kPassed
        ? expectSent(tester, moment, expected, control)
        : silent;
}

} // namespace

Outcome opensWithLedsOff(Tester& tester)
{
    if (tester.subject().isRecording)
        return skipped(kNoLamps);
    const Outcome outcome
        = expectSent(tester, 0, onHook(tester.device().leds()), ControlId::kOffHook);
    // A device without LEDs opens, too.
    return outcome.verdict == Outcome::Verdict::kSkipped ? Outcome{} : outcome;
}

// A control that the descriptor does not have is no fault.
Outcome controlsAreUsable(Tester& tester)
{
    const ControlMap& map = tester.device().map();
    std::string reasons;
    for (const Control& control : kControls) {
        const auto& reason = map[control.id].reason;
        if (reason && std::string_view(reason->word) != "absent")
            reasons += (reasons.empty() ? "" : " ") + std::string(control.name)
                + " cannot be used: " + reason->text;
    }
    if (!reasons.empty())
        return failed(reasons);
    const bool hasAny = std::any_of(kControls.begin(), kControls.end(),
        [&](const Control& control) { return map[control.id].report.has_value(); });
    return hasAny ? Outcome{}
                  : failed("The descriptor has none of the controls that Kelprobe uses. Add a "
                           "Headset collection of the Telephony page.");
}

Outcome ringLedOn(Tester& tester)
{
    const Outcome outcome = expectAfter(tester, CallState::kIdle, &HidController::toggleRing,
        {tester.device().leds().ringOn}, ControlId::kRing);
    return expectVisible(tester, outcome, "Is the ring LED on, and no other?");
}

Outcome ledsOffAfterReject(Tester& tester)
{
    if (!tester.device().has(ControlId::kRing))
        return tester.device().lacks(ControlId::kRing);
    return expectAfter(tester, CallState::kRinging, &HidController::toggleHangup,
        onHook(tester.device().leds()), ControlId::kRing);
}

Outcome offHookLedOn(Tester& tester)
{
    if (!tester.device().has(ControlId::kOffHook))
        return tester.device().lacks(ControlId::kOffHook);
    const Outcome outcome = expectAfter(tester, CallState::kRinging, &HidController::togglePickup,
        offHook(tester.device().leds()), ControlId::kOffHook);
    return expectVisible(tester, outcome, "Is the off-hook LED on, and no other?");
}

Outcome muteLedOn(Tester& tester)
{
    const Outcome outcome = expectAfter(tester, CallState::kActive,
        &HidController::toggleMuteUnmute, {tester.device().leds().muteOn}, ControlId::kMute);
    return expectVisible(tester, outcome, "Are the mute and the off-hook LED on?");
}

Outcome muteLedOff(Tester& tester)
{
    if (!tester.device().has(ControlId::kMute))
        return tester.device().lacks(ControlId::kMute);
    return expectAfter(tester, CallState::kMuted, &HidController::toggleMuteUnmute,
        {tester.device().leds().muteOff}, ControlId::kMute);
}

Outcome waitingCallLeds(Tester& tester)
{
    const DeviceFacts& device = tester.device();
    for (const ControlId needed : {ControlId::kRing, ControlId::kOffHook})
        if (!device.has(needed))
            return device.lacks(needed);
    const Outcome outcome = expectAfter(tester, CallState::kActive, &HidController::toggleRing,
        {device.leds().ringAndOffHookOn}, ControlId::kRing);
    return expectVisible(tester, outcome, "Are the ring and the off-hook LED on?");
}

Outcome ledsAfterWaitingCall(Tester& tester)
{
    const DeviceFacts& device = tester.device();
    for (const ControlId needed : {ControlId::kRing, ControlId::kOffHook})
        if (!device.has(needed))
            return device.lacks(needed);
    Reports expected = onHook(device.leds());
    for (const auto& report : offHook(device.leds()))
        expected.push_back(report);
    return expectAfter(
        tester, CallState::kWaiting, &HidController::toggleHangup, expected, ControlId::kOffHook);
}

Outcome ledsOffAtTheEnd(Tester& tester)
{
    if (tester.subject().isRecording)
        return skipped(kNoLamps);
    if (!tester.enter(CallState::kActive))
        return cannotEnter();
    const size_t moment = tester.now();
    tester.close();
    const Outcome outcome
        = expectSent(tester, moment, onHook(tester.device().leds()), ControlId::kOffHook);
    const Outcome seen = expectVisible(tester, outcome, "Are all LEDs off?");
    tester.open();
    return seen;
}

} // namespace ctl
