// Tests over all reports and presses of the run.
#include "tools/ctl/check/tests/conformance_tests.h"
#include "tools/ctl/check/tests/press_findings.h"

#include <algorithm>

namespace ctl {
namespace {

constexpr std::chrono::milliseconds kSlow{1000};
constexpr const char* kNoReports = "The device sent no input report.";

std::string inMilliseconds(std::chrono::milliseconds time)
{
    return std::to_string(time.count()) + " ms";
}

std::string timesOf(const Press& press)
{
    return std::string(nameOf(press.action).word) + ": report to event "
        + inMilliseconds(press.latency->sinceReport) + ", command to event "
        + inMilliseconds(press.latency->sinceCommand);
}

// In a recording also those that belong to no press, and those that no test used.
Reports allReceived(const Tester& tester)
{
    if (tester.subject().isRecording)
        return tester.subject().recorded;
    Reports reports;
    for (const Entry& entry : ofKind(tester.since(0), Entry::Kind::kReceived))
        reports.push_back(entry.report);
    return reports;
}

} // namespace

Outcome reportLengths(Tester& tester)
{
    const DeviceFacts& device = tester.device();
    const Reports received = allReceived(tester);
    if (received.empty())
        return skipped(kNoReports);
    for (const auto& report : received) {
        const auto view = report::wireReport(device.layout(), report::ReportKind::kInput, report);
        const auto expected = device.layout().wireSize(view.key);
        if (!expected)
            return failed("The device sent an input report with the id "
                    + std::to_string(view.key.id) + ", which its descriptor does not have.",
                {{"got", {device.input(report)}}});
        if (report.size() != *expected)
            return failed("The device sent an input report of " + std::to_string(report.size())
                    + " bytes; its descriptor gives it " + std::to_string(*expected)
                    + ". Kelprobe does not recognise the controls in it. Send whole reports.",
                {{"got", {device.input(report)}}});
    }
    return {};
}

// The hook switch may report its position more than once. In a recording, presses that follow each
// other may be two of the person.
Outcome pressesReportedOnce(Tester& tester)
{
    const DeviceFacts& device = tester.device();
    bool any = false;
    for (const Press& press : tester.presses()) {
        any = any || !press.received.empty();
        if (press.action == Action::kHook)
            continue;
        if (const auto repeated = repetition(device, press.action, press.received);
            !repeated.empty())
            return failed(repeated);
    }
    const Reports& recorded = tester.subject().recorded;
    for (const Action press : {Action::kMute, Action::kFlash, Action::kBusy})
        if (isRepeated(device, controlOf(press), recorded))
            return failed(repetition(device, press, recorded));
    return any ? Outcome{} : skipped("Nothing was pressed.");
}

Outcome pressToEventTime(Tester& tester)
{
    if (!tester.timesPresses())
        return skipped("Only --press-command shows when a button was pressed.");
    std::vector<std::string> times;
    std::string slow;
    for (const Press& press : tester.presses()) {
        if (!press.latency)
            continue;
        times.push_back(timesOf(press));
        const auto latency = std::max(press.latency->sinceReport, press.latency->sinceCommandEnd);
        if (latency > kSlow)
            slow += (slow.empty() ? "It took the " : ", the ")
                + std::string(nameOf(press.action).control) + ' ' + inMilliseconds(latency);
    }
    if (times.empty())
        return skipped("No press became an event.");
    Outcome outcome;
    if (!slow.empty())
        outcome = failed(
            slow + " to become an event. Send the report as soon as the button is pressed.");
    outcome.details = {{"times", times}};
    return outcome;
}

} // namespace ctl
