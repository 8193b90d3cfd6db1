// Tests over all presses of the run, and of unplugging.
#include "tools/ctl/check/tests/conformance_tests.h"
#include "tools/ctl/check/tests/expectations.h"
#include "tools/ctl/check/tests/press_findings.h"

#include <algorithm>

namespace ctl {
namespace {

constexpr std::chrono::milliseconds kSlow{1000};
constexpr const char* kNoReports = "The device sent no input report.";

std::string milliseconds(std::chrono::milliseconds time)
{
    return std::to_string(time.count()) + " ms";
}

std::string timesOf(const Press& press)
{
    const std::string times = std::string(nameOf(press.action).word) + ": report to event "
        + milliseconds(*press.sinceReport);
    return press.sinceCommand ? times + ", command to event " + milliseconds(*press.sinceCommand)
                              : times;
}

} // namespace

Outcome reportLengths(Tester& tester)
{
    const DeviceFacts& device = tester.device();
    const auto received = tester.since(0, Entry::Kind::kReceived);
    if (received.empty())
        return skipped(kNoReports);
    for (const Entry& entry : received) {
        const auto view
            = report::wireReport(device.layout(), report::ReportKind::kInput, entry.report);
        const auto expected = device.layout().wireSize(view.key);
        if (!expected)
            return failed("The device sent an input report with the id "
                    + std::to_string(view.key.id) + ", which its descriptor does not have.",
                {{"got", {device.input(entry.report)}}});
        if (entry.report.size() != *expected)
            return failed("The device sent an input report of "
                    + std::to_string(entry.report.size()) + " bytes; its descriptor gives it "
                    + std::to_string(*expected)
                    + ". Kelprobe does not recognise the controls in it. Send whole reports.",
                {{"got", {device.input(entry.report)}}});
    }
    return {};
}

// The hook switch may report its position more than once.
Outcome pressesReportedOnce(Tester& tester)
{
    bool any = false;
    for (const Press& press : tester.presses()) {
        any = any || !press.received.empty();
        if (press.action != Action::kHook
            && isRepeated(tester.device(), controlOf(press.action), press.received))
            return failed("The device repeated the report of the "
                + std::string(nameOf(press.action).control)
                + " without a release between, which counts as another press. Send it once a "
                  "press.");
    }
    return any ? Outcome{} : skipped("Nothing was pressed.");
}

Outcome pressToEventTime(Tester& tester)
{
    Outcome outcome;
    std::vector<std::string> times;
    for (const Press& press : tester.presses()) {
        if (!press.sinceReport)
            continue;
        times.push_back(timesOf(press));
        const auto latency = std::max(*press.sinceReport, press.sinceCommandEnd);
        if (latency > kSlow)
            outcome = failed("The " + std::string(nameOf(press.action).control) + " took "
                + milliseconds(latency)
                + " to become an event. Send the report as soon as the button is pressed.");
    }
    if (times.empty())
        return skipped("No press became an event.");
    outcome.details = {{"times", times}};
    return outcome;
}

Outcome worksAfterReplug(Tester& tester)
{
    if (!tester.canReplug())
        return skipped("Neither --replug nor --replug-command is given.");
    (void)tester.enter(CallState::kActive);
    const Outcome unplugged = tester.unplug();
    if (unplugged.verdict != Outcome::Verdict::kPassed)
        return unplugged;
    const size_t moment = tester.now();
    const Outcome replugged = tester.replug();
    if (replugged.verdict != Outcome::Verdict::kPassed)
        return replugged;
    const auto& leds = tester.device().leds();
    const Outcome outcome = expectSent(
        tester, moment, {leds.ringOff, leds.offHookOff, leds.holdOff}, ControlId::kOffHook);
    // A device without LEDs has no reports to take.
    return outcome.verdict == Outcome::Verdict::kSkipped ? Outcome{} : outcome;
}

} // namespace ctl
