#include "tools/ctl/check/tests/expectations.h"

#include "tools/ctl/meeting/entry_words.h"

#include <algorithm>
#include <map>

namespace ctl {
namespace {

using Kind = Entry::Kind;

std::vector<std::string> inWords(const DeviceFacts& device, const Reports& reports)
{
    std::vector<std::string> words;
    for (const auto& report : reports)
        words.push_back(device.output(report));
    return words;
}

Reports withoutEmpty(Reports reports)
{
    std::erase_if(reports, [](const auto& report) { return report.empty(); });
    return reports;
}

Reports reportsOf(const std::vector<Entry>& entries)
{
    Reports reports;
    for (const Entry& entry : entries)
        reports.push_back(entry.report);
    return reports;
}

// A failure if a report was not taken, else a pass.
Outcome expectTaken(const DeviceFacts& device, const std::vector<Entry>& sent)
{
    const auto refused
        = std::find_if(sent.begin(), sent.end(), [](const Entry& entry) { return entry.failed; });
    if (refused == sent.end())
        return {};
    return failed("The device did not take the output report " + device.output(refused->report)
        + ": " + failureText(*refused) + ". It has to take every output report of its descriptor.");
}

// The last report of each id.
std::map<uint8_t, report::Bytes> lastOfEach(const Reports& reports)
{
    std::map<uint8_t, report::Bytes> last;
    for (const auto& report : reports)
        last[report.front()] = report;
    return last;
}

} // namespace

Outcome expectSent(const Tester& tester, size_t moment, const Reports& expected, ControlId control)
{
    const DeviceFacts& device = tester.device();
    const Reports wanted = withoutEmpty(expected);
    if (wanted.empty())
        return device.lacks(control);
    const std::vector<Entry> sent = tester.since(moment, Kind::kSent);
    if (const Outcome taken = expectTaken(device, sent); taken.verdict != Outcome::Verdict::kPassed)
        return taken;
    const Reports got = reportsOf(sent);
    if (got == wanted)
        return {};
    return failed("The output reports are not those that the state of the meeting needs.",
        {{"expected", inWords(device, wanted)}, {"got", inWords(device, got)}});
}

Outcome expectLeds(const Tester& tester, size_t moment, const Reports& expected)
{
    const DeviceFacts& device = tester.device();
    const std::vector<Entry> sent = tester.since(moment, Kind::kSent);
    if (const Outcome taken = expectTaken(device, sent); taken.verdict != Outcome::Verdict::kPassed)
        return taken;
    const Reports wanted = withoutEmpty(expected);
    const Reports got = reportsOf(sent);
    if (lastOfEach(got) == lastOfEach(wanted))
        return {};
    return failed("After the press the output reports are not those that the state of the meeting "
                  "needs.",
        {{"expected", inWords(device, wanted)}, {"got", inWords(device, got)}});
}

Outcome expectNoEvent(const Tester& tester, size_t moment, const std::string& situation)
{
    const std::vector<Kind> events = tester.eventsSince(moment);
    if (events.empty())
        return {};
    std::vector<std::string> received;
    for (const Entry& entry : tester.since(moment, Kind::kReceived))
        received.push_back(tester.device().input(entry.report));
    return failed("The device sent a report by itself " + situation + ", and Kelprobe took it as "
            + eventNames(events) + ". Send a report of a control only when it is used.",
        {{"got", received}});
}

Outcome expectVisible(Tester& tester, Outcome outcome, const std::string& question)
{
    if (outcome.verdict != Outcome::Verdict::kPassed || tester.ask(question).value_or(true))
        return outcome;
    return failed("The device took its output reports, but the person at the terminal answered no "
                  "to: "
        + question);
}

std::string eventNames(const std::vector<Kind>& events)
{
    std::string names;
    for (const Kind kind : events) {
        const char* const name = kind == Kind::kAccept ? "accept"
            : kind == Kind::kReject                    ? "reject"
            : kind == Kind::kMute                      ? "mute"
                                                       : "unmute";
        names += (names.empty() ? "" : ", ") + std::string(name);
    }
    return names;
}

} // namespace ctl
