// A person looks at the LEDs: that the device takes their reports does not show that they light.
#include "tools/ctl/check/tests/conformance_tests.h"
#include "tools/ctl/check/tests/expectations.h"

namespace ctl {
namespace {

// Asks about the LEDs in a state of the meeting, if the stack can use the LED `control`.
Outcome look(Tester& tester, CallState state, ControlId control, const std::string& question)
{
    if (!tester.isSeen())
        return skipped("Nobody looked at the LEDs: only a person at the terminal can see them.");
    if (!tester.device().has(control))
        return tester.device().lacks(control);
    if (!tester.enter(state))
        return cannotEnter(tester.device(), tester.entering());
    const auto answer = tester.ask(question);
    if (!answer)
        return skipped("Nobody answered: " + question);
    return *answer ? Outcome{}
                   : failed("The device took its output reports, but the person at the terminal "
                            "answered no to: "
                       + question);
}

} // namespace

Outcome ringLedSeen(Tester& tester)
{
    return look(tester, CallState::kRinging, ControlId::kRing, "Is the ring LED on, and no other?");
}

Outcome offHookLedSeen(Tester& tester)
{
    return look(
        tester, CallState::kActive, ControlId::kOffHook, "Is the off-hook LED on, and no other?");
}

Outcome muteLedSeen(Tester& tester)
{
    return look(
        tester, CallState::kMuted, ControlId::kMute, "Are the mute and the off-hook LED on?");
}

Outcome waitingCallSeen(Tester& tester)
{
    if (!tester.device().has(ControlId::kOffHook))
        return tester.device().lacks(ControlId::kOffHook);
    return look(
        tester, CallState::kWaiting, ControlId::kRing, "Are the ring and the off-hook LED on?");
}

Outcome noLedSeen(Tester& tester)
{
    return look(tester, CallState::kIdle, ControlId::kOffHook, "Are all LEDs off?");
}

} // namespace ctl
