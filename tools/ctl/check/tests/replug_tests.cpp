// The device is unplugged and plugged in again.
#include "tools/ctl/check/tests/conformance_tests.h"
#include "tools/ctl/check/tests/expectations.h"

namespace ctl {
namespace {

using Verdict = Outcome::Verdict;

// Without a press: the device takes the reports of a call, and sends no event.
Outcome takesACall(Tester& tester)
{
    const DeviceFacts& device = tester.device();
    const bool rings = device.has(ControlId::kRing);
    const size_t moment = tester.now();
    if (!tester.enter(rings ? CallState::kRinging : CallState::kActive))
        return cannotEnter(device, tester.entering());
    const Reports expected{rings ? device.leds().ringOn : device.leds().offHookOn};
    return expectSent(device, tester.since(moment), expected, ControlId::kOffHook);
}

Outcome worksAfterOpening(Tester& tester, const Entries& opening)
{
    const DeviceFacts& device = tester.device();
    const auto& leds = device.leds();
    Outcome opened = expectSent(
        device, opening, {leds.ringOff, leds.offHookOff, leds.holdOff}, ControlId::kOffHook);
    if (opened.verdict == Verdict::kFailed)
        return opened;
    tester.watch(tester.times().silence); // a device that starts may report its position
    Outcome call = takesACall(tester);
    if (call.verdict == Verdict::kFailed)
        return call;
    Outcome answer = hookAnswers(tester);
    return answer.verdict == Verdict::kSkipped ? Outcome{} : answer; // it cannot be pressed
}

} // namespace

Outcome worksAfterReplug(Tester& tester)
{
    if (tester.subject().isRecording)
        return skipped("A recording cannot be unplugged.");
    if (!tester.canReplug())
        return skipped("Neither --replug nor --replug-command is given.");
    (void)tester.enter(CallState::kActive);
    Outcome unplugged = tester.unplug();
    if (unplugged.verdict != Verdict::kPassed)
        return unplugged;
    const size_t moment = tester.now();
    Outcome replugged = tester.replug();
    return replugged.verdict == Verdict::kPassed ? worksAfterOpening(tester, tester.since(moment))
                                                 : replugged;
}

} // namespace ctl
