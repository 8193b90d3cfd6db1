// Presses become the events that they should.
#include "tools/ctl/check/tests/conformance_tests.h"
#include "tools/ctl/check/tests/expectations.h"
#include "tools/ctl/check/tests/press_findings.h"

#include <algorithm>
#include <array>

namespace ctl {
namespace {

using Kind = Entry::Kind;
using Verdict = Outcome::Verdict;

struct PressTest {
    Action press;
    CallState before;
    Kind event;
    Reports leds; // after it; empty reports are left out
};

// A press that did not happen, or that nothing came of; no value if there is something to judge.
std::optional<Outcome> withoutPress(const Tester& tester, const Press& press)
{
    if (press.state == Operator::State::kDeclined)
        return skipped(press.reason);
    if (press.state == Operator::State::kFailed)
        return failed(press.reason);
    if (press.state == Operator::State::kBusy && press.received.empty())
        return failed("No report came within " + std::to_string(tester.times().press.count() / 1000)
            + " s after the request to press. If the button was pressed, the device sends nothing "
              "for it.");
    return std::nullopt;
}

std::string moreEvents(const DeviceFacts& device, const PressTest& test, const Press& press)
{
    const std::string control(nameOf(test.press).control);
    const std::string events
        = "One press of the " + control + " became the events " + eventNames(press.events) + ". ";
    const std::string repeated = repetition(device, test.press, press.received);
    return events
        + (repeated.empty() ? "Send only the report of the press and that of the release."
                            : repeated);
}

// Of a press that caused another event than the test's, or none.
Outcome explain(const Tester& tester, const PressTest& test, const Press& press)
{
    const DeviceFacts& device = tester.device();
    if (test.event == Kind::kUnmute && press.events == std::vector{Kind::kMute}
        && !device.has(ControlId::kMute)) {
        const auto& reason = device.map()[ControlId::kMute].reason;
        return failed("The mute button mutes again instead of unmuting: Kelprobe keeps the mute "
                      "state only for a device whose mute LED it can use. "
            + (reason ? reason->text : std::string()));
    }
    Outcome outcome = explainPress(device, {test.press, test.before}, press.received);
    if (!press.events.empty())
        outcome.reason
            = "Kelprobe took the press as " + eventNames(press.events) + ". " + outcome.reason;
    return outcome;
}

Outcome judge(Tester& tester, const PressTest& test, const Press& press, size_t moment)
{
    if (auto outcome = withoutPress(tester, press))
        return *outcome;
    if (press.events.empty() || press.events.front() != test.event)
        return explain(tester, test, press);
    if (press.events.size() > 1)
        return failed(moreEvents(tester.device(), test, press));
    const PressCase pressCase{test.press, test.before};
    if (!otherControls(tester.device(), pressCase, press.received).empty())
        return explainPress(tester.device(), pressCase, press.received);
    if (tester.subject().isRecording)
        return {};
    // The reader thread sends after the event.
    const auto isDecided = [&] {
        const Entries entries = tester.since(moment);
        return expectLeds(tester.device(), entries, test.leds).verdict == Verdict::kPassed
            || std::any_of(
                entries.begin(), entries.end(), [](const Entry& entry) { return entry.failed; });
    };
    (void)tester.waitUntil(isDecided, tester.times().reaction);
    return expectLeds(tester.device(), tester.since(moment), test.leds);
}

Outcome run(Tester& tester, const PressTest& test)
{
    if (!tester.enter(test.before))
        return cannotEnter(tester.device(), tester.entering());
    const size_t moment = tester.now();
    const Press press = tester.press(test.press);
    return judge(tester, test, press, moment);
}

// The first of these controls that the stack lacks, as a skip; else runs the test.
template <size_t count>
Outcome runIf(Tester& tester, const std::array<ControlId, count>& needed, const PressTest& test)
{
    for (const ControlId control : needed)
        if (!tester.device().has(control))
            return tester.device().lacks(control);
    return run(tester, test);
}

// The stack decides on a second call only by a report that has both bits.
std::optional<Outcome> separateReports(const DeviceFacts& device, ControlId button)
{
    const auto& hook = device.map()[ControlId::kHookSwitch].report;
    const auto& mask = device.map()[button].report;
    if (!hook || !mask)
        return std::nullopt;
    const bool sameReport = hook->size() == mask->size()
        && (!device.layout().usesReportIds || hook->front() == mask->front());
    if (sameReport)
        return std::nullopt;
    return skipped(std::string(nameOf(button))
        + " and Hook Switch are in different reports, and Kelprobe needs both in one.");
}

// A waiting call is decided by `button`.
Outcome runWaiting(Tester& tester, ControlId button, const PressTest& test)
{
    if (const auto separate = separateReports(tester.device(), button))
        return *separate;
    return runIf(tester, std::array{ControlId::kRing, ControlId::kHookSwitch, button}, test);
}

// What can be pressed on the device; no value if nothing. `first` is tried in order.
template <size_t count>
std::optional<Action> available(const DeviceFacts& device, const std::array<Action, count>& first)
{
    const auto found = std::find_if(
        first.begin(), first.end(), [&](Action action) { return device.has(controlOf(action)); });
    return found == first.end() ? std::nullopt : std::optional(*found);
}

} // namespace

Outcome hookAnswers(Tester& tester)
{
    const auto& leds = tester.device().leds();
    return runIf(tester, std::array{ControlId::kRing, ControlId::kHookSwitch},
        {Action::kHook, CallState::kRinging, Kind::kAccept, {leds.ringOff, leds.offHookOn}});
}

// Any report without the hook switch's bit rejects a call, so any other button does. Those of a
// call need not send anything before there is one.
Outcome buttonRejects(Tester& tester)
{
    const auto button
        = available(tester.device(), std::array{Action::kBusy, Action::kFlash, Action::kMute});
    if (!button)
        return skipped("Kelprobe finds no Line Busy Tone, Flash or Phone Mute in the descriptor.");
    const auto& leds = tester.device().leds();
    Outcome outcome = runIf(tester, std::array{ControlId::kRing},
        {*button, CallState::kRinging, Kind::kReject,
            {leds.ringOff, leds.offHookOff, leds.holdOff}});
    const bool isPressed = outcome.verdict == Verdict::kFailed && !tester.presses().empty()
        && tester.presses().back().action == *button;
    if (*button != Action::kBusy && isPressed && tester.presses().back().isSilent())
        return skipped("The device has no button that rejects a call; its "
            + std::string(nameOf(*button).control) + " sends nothing while a call rings.");
    return outcome;
}

Outcome muteButtonMutes(Tester& tester)
{
    return runIf(tester, std::array{ControlId::kPhoneMute},
        {Action::kMute, CallState::kActive, Kind::kMute, {tester.device().leds().muteOn}});
}

Outcome muteButtonUnmutes(Tester& tester)
{
    return runIf(tester, std::array{ControlId::kPhoneMute},
        {Action::kMute, CallState::kMuted, Kind::kUnmute, {tester.device().leds().muteOff}});
}

Outcome flashAnswersWaitingCall(Tester& tester)
{
    const auto& leds = tester.device().leds();
    return runWaiting(tester, ControlId::kFlash,
        {Action::kFlash, CallState::kWaiting, Kind::kAccept, {leds.ringOff, leds.offHookOn}});
}

Outcome busyRefusesWaitingCall(Tester& tester)
{
    const auto& leds = tester.device().leds();
    return runWaiting(tester, ControlId::kLineBusy,
        {Action::kBusy, CallState::kWaiting, Kind::kReject, {leds.ringOff, leds.offHookOn}});
}

Outcome pressWhileIdle(Tester& tester)
{
    const auto button = available(
        tester.device(), std::array{Action::kHook, Action::kMute, Action::kBusy, Action::kFlash});
    if (!button)
        return skipped("The device has no button that Kelprobe uses.");
    (void)tester.enter(CallState::kIdle);
    const size_t moment = tester.now();
    const Press press = tester.press(*button);
    if (press.isSilent())
        return skipped("The device sends nothing for a press while nothing rings.");
    if (const auto outcome = withoutPress(tester, press))
        return *outcome;
    if (!press.events.empty() || !ofKind(tester.since(moment), Kind::kSent).empty())
        return failed("A press while nothing rang became " + eventNames(press.events) + '.');
    return {};
}

} // namespace ctl
