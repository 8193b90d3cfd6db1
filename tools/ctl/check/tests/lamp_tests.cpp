// The LEDs follow the meeting.
#include "tools/ctl/check/tests/conformance_tests.h"
#include "tools/ctl/check/tests/expectations.h"
#include "tools/ctl/explain/phrases.h"

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

// Expects no event and these reports.
Outcome expectReports(
    const DeviceFacts& device, const Entries& entries, const Reports& expected, ControlId control)
{
    // First: after an event the stack sends further reports.
    const Outcome silent = expectNoEvent(device, entries, "after its LEDs were set");
    return silent.verdict == Outcome::Verdict::kPassed
        ? expectSent(device, entries, expected, control)
        : silent;
}

Outcome expectAfterStep(Tester& tester, Step step, const Reports& expected, ControlId control)
{
    if (tester.subject().isRecording)
        return skipped(kNoLamps);
    if (!tester.device().has(control))
        return tester.device().lacks(control);
    const WatchedStep& watched = tester.watchStep(step);
    return watched.entered ? expectReports(tester.device(), watched.entries, expected, control)
                           : cannotEnter(tester.device(), watched.entering);
}

using Operation = void (HidController::*)();

// Brings the meeting into `before`, performs the operation and expects these reports.
Outcome expectAfter(Tester& tester, CallState before, Operation operation, const Reports& expected,
    ControlId control)
{
    if (tester.subject().isRecording)
        return skipped(kNoLamps);
    if (!tester.enter(before))
        return cannotEnter(tester.device(), tester.entering());
    const size_t moment = tester.now();
    (tester.meeting().*operation)();
    tester.settle();
    return expectReports(tester.device(), tester.since(moment), expected, control);
}

std::string whereToPutControls(const report::Layout& layout)
{
    const auto headset = std::ranges::find_if(layout.collections, [](const auto& collection) {
        return collection.parent == report::Collection::kNone && collection.usage == kHeadsetUsage;
    });
    return headset == layout.collections.end()
        ? "Add a Headset collection of the Telephony page."
        : "Put them into its Headset collection at " + offsetText(headset->offset) + '.';
}

} // namespace

Outcome openingTaken(Tester& tester)
{
    if (tester.subject().isRecording)
        return skipped(kNoLamps);
    const DeviceFacts& device = tester.device();
    const Outcome outcome = expectSent(
        device, tester.watchStep(Step::kOpen).entries, onHook(device.leds()), ControlId::kOffHook);
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
                  : failed("The descriptor has none of the controls that Kelprobe uses. "
                      + whereToPutControls(tester.device().layout()));
}

Outcome ringTaken(Tester& tester)
{
    return expectAfterStep(tester, Step::kRing, {tester.device().leds().ringOn}, ControlId::kRing);
}

Outcome rejectTaken(Tester& tester)
{
    if (!tester.device().has(ControlId::kRing))
        return tester.device().lacks(ControlId::kRing);
    return expectAfter(tester, CallState::kRinging, &HidController::toggleHangup,
        onHook(tester.device().leds()), ControlId::kRing);
}

Outcome pickUpTaken(Tester& tester)
{
    const auto& leds = tester.device().leds();
    return expectAfterStep(
        tester, Step::kPickUp, {leds.ringOn, leds.ringOff, leds.offHookOn}, ControlId::kOffHook);
}

Outcome muteTaken(Tester& tester)
{
    return expectAfterStep(tester, Step::kMute, {tester.device().leds().muteOn}, ControlId::kMute);
}

Outcome unmuteTaken(Tester& tester)
{
    return expectAfterStep(
        tester, Step::kUnmute, {tester.device().leds().muteOff}, ControlId::kMute);
}

Outcome waitingCallTaken(Tester& tester)
{
    const DeviceFacts& device = tester.device();
    for (const ControlId needed : {ControlId::kRing, ControlId::kOffHook})
        if (!device.has(needed))
            return device.lacks(needed);
    return expectAfter(tester, CallState::kActive, &HidController::toggleRing,
        {device.leds().ringAndOffHookOn}, ControlId::kRing);
}

Outcome waitingRejectTaken(Tester& tester)
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

// The LEDs are switched off when the device is closed, and when it is opened again.
Outcome endTaken(Tester& tester)
{
    if (tester.subject().isRecording)
        return skipped(kNoLamps);
    const DeviceFacts& device = tester.device();
    const WatchedStep& watched = tester.watchStep(Step::kEnd);
    if (!watched.entered)
        return cannotEnter(device, watched.entering);
    Reports expected = onHook(device.leds());
    for (const auto& report : onHook(device.leds()))
        expected.push_back(report);
    return expectReports(device, watched.entries, expected, ControlId::kOffHook);
}

} // namespace ctl
