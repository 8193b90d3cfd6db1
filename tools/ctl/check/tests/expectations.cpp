#include "tools/ctl/check/tests/expectations.h"

#include "tools/ctl/meeting/entry_words.h"

#include <algorithm>
#include <map>

namespace ctl {
namespace {

using Kind = Entry::Kind;

std::vector<std::string> outputsInWords(const DeviceFacts& device, const Reports& reports)
{
    std::vector<std::string> words;
    for (const auto& report : reports)
        words.push_back(device.output(report));
    return words;
}

std::vector<std::string> receivedInWords(const DeviceFacts& device, const Entries& entries)
{
    std::vector<std::string> words;
    for (const Entry& entry : ofKind(entries, Kind::kReceived))
        words.push_back(device.input(entry.report));
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
Outcome expectTaken(const DeviceFacts& device, const Entries& sent)
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

Outcome expectSent(
    const DeviceFacts& device, const Entries& entries, const Reports& expected, ControlId control)
{
    const Reports wanted = withoutEmpty(expected);
    if (wanted.empty())
        return device.lacks(control);
    const Entries sent = ofKind(entries, Kind::kSent);
    if (Outcome taken = expectTaken(device, sent); taken.verdict != Outcome::Verdict::kPassed)
        return taken;
    const Reports got = reportsOf(sent);
    if (got == wanted)
        return {};
    return failed("The output reports are not those that the state of the meeting needs.",
        {{"expected", outputsInWords(device, wanted)}, {"got", outputsInWords(device, got)}});
}

Outcome expectLeds(const DeviceFacts& device, const Entries& entries, const Reports& expected)
{
    const Entries sent = ofKind(entries, Kind::kSent);
    if (Outcome taken = expectTaken(device, sent); taken.verdict != Outcome::Verdict::kPassed)
        return taken;
    const Reports wanted = withoutEmpty(expected);
    const Reports got = reportsOf(sent);
    if (lastOfEach(got) == lastOfEach(wanted))
        return {};
    return failed("After the press the output reports are not those that the state of the meeting "
                  "needs.",
        {{"expected", outputsInWords(device, wanted)}, {"got", outputsInWords(device, got)}});
}

Outcome expectNoEvent(
    const DeviceFacts& device, const Entries& entries, const std::string& situation)
{
    const std::vector<Kind> events = eventsIn(entries);
    if (events.empty())
        return {};
    return failed("The device sent a report by itself " + situation + ", and Kelprobe took it as "
            + eventNames(events) + ". Send a report of a control only when it is used.",
        {{"got", receivedInWords(device, entries)}});
}

Outcome cannotEnter(const DeviceFacts& device, const Entries& entering)
{
    return failed(
        "The meeting could not be brought into the state for this test: the device sent a report "
        "by itself, and Kelprobe took it as "
            + eventNames(eventsIn(entering))
            + ". Send a report of a control only when it is used. If it only reports late that the "
              "hook switch follows the LED, check it with a longer --silence.",
        {{"got", receivedInWords(device, entering)}});
}

std::string eventNames(const std::vector<Kind>& events)
{
    constexpr size_t most = 4;
    std::string names;
    for (size_t i = 0; i < std::min(events.size(), most); ++i) {
        const Kind kind = events[i];
        const char* const name = kind == Kind::kAccept ? "accept"
            : kind == Kind::kReject                    ? "reject"
            : kind == Kind::kMute                      ? "mute"
                                                       : "unmute";
        names += (names.empty() ? "" : ", ") + std::string(name);
    }
    return events.size() <= most ? names
                                 : names + " and " + std::to_string(events.size() - most) + " more";
}

} // namespace ctl
