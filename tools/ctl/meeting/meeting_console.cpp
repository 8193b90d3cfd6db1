#include "tools/ctl/meeting/meeting_console.h"

#include "tools/ctl/cli/failure.h"
#include "tools/ctl/cli/output.h"
#include "tools/ctl/traffic/failure_words.h"
#include "tools/ctl/usb/device_words.h"
#include "tools/text/lower_case.h"
#include "tools/text/printable.h"
#include "tools/text/suggestion.h"

#include <json/json.h>

#include <algorithm>
#include <array>
#include <utility>

namespace ctl {
namespace {

constexpr std::array<std::string_view, 6> kCommands{
    "ring", "pickup", "hangup", "mute", "quit", "help"};

// An opened device is set on-hook, if the stack has found any of its LEDs.
constexpr const char* kNothingSent
    = "this device gets no reports: Kelprobe uses none of its LEDs, or could not read its report "
      "descriptor; kelprobectl describe explains why";

void complain(const std::string& text)
{
    Output::err().line("kelprobectl: " + text);
}

void complainAbout(const std::string& word)
{
    const std::string_view suggestion = text::nearest(text::lowerCase(word), kCommands);
    complain("unknown command " + text::printable(word)
        + (suggestion.empty() ? "; type help" : "; did you mean " + std::string(suggestion) + '?'));
}

// Why the command changes nothing now; empty if it does.
std::string obstacle(const HidController& meeting, std::string_view command)
{
    if ((command == "pickup" || command == "hangup") && !meeting.ringState())
        return std::string(command) + " has no effect: nothing rings";
    if (command == "mute" && !meeting.meetingStatus())
        return "mute has no effect: there is no call";
    return {};
}

DeviceEntry usableDevice(const std::optional<std::string>& choice)
{
    DeviceEntry device = chooseDevice(choice);
    requireUsable(device);
    return device;
}

} // namespace

MeetingConsole::MeetingConsole(const MeetingOptions& options)
    : json_(options.json)
    , device_(usableDevice(options.device))
    , words_(device_.descriptor)
    , journal_([this](const Entry& entry) { handle(entry); })
{
    if (!options.recording)
        return;
    recording_.emplace(*options.recording);
    (void)recording_->addDevice({.name = device_.manufacturer + ' ' + device_.product,
        .physicalPath = device_.path,
        .vendorId = device_.vendorId,
        .productId = device_.productId,
        .descriptor = device_.descriptor});
}

int MeetingConsole::run()
{
    Output::err().progress("opening " + idsText(device_)); // may take some seconds
    try {
        Session session(journal_, device_);
        if (!sent_)
            complain(kNothingSent);
        play(session.meeting());
    } catch (const EventLoop::Stopped&) {
        // The device is on-hook now, as after quit.
    }
    journal_.check();
    if (recording_)
        (void)recording_->finish(); // it has a device
    if (gone_)
        throw Failure(kNoAccess, "the device has gone; plug it in and start the meeting again");
    return refused_ || !sent_ ? kFellShort : kFine;
}

void MeetingConsole::handle(const Entry& entry)
{
    if (!std::exchange(started_, true))
        Output::err().progress("");
    const bool sent = entry.kind == Entry::Kind::kSent;
    sent_ = sent_ || sent;
    if (entry.kind == Entry::Kind::kGone || (sent && entry.failed && meansGone(entry.usbError)))
        gone_ = true;
    else if (sent && entry.failed && !gone_)
        refuse(entry);
    if (recording_)
        record(entry);
    if (json_)
        Output::out().jsonLine(words_.json(entry));
    else
        Output::out().line(words_.line(entry, Output::out()));
}

void MeetingConsole::refuse(const Entry& entry)
{
    if (!refused_)
        complain("the device does not take reports: " + failureText(entry)
            + "; plug it in again, or check it with kelprobectl check");
    refused_ = true;
}

void MeetingConsole::record(const Entry& entry)
{
    using Direction = report::RecordedReport::Direction;
    const bool sent = entry.kind == Entry::Kind::kSent;
    if (!sent && entry.kind != Entry::Kind::kReceived)
        return;
    if (!firstReport_)
        firstReport_ = entry.time;
    report::RecordedReport recorded{.time = entry.time - *firstReport_,
        .direction = sent ? Direction::kOutput : Direction::kInput,
        .bytes = entry.report};
    if (sent && entry.failed)
        recorded.failure = failureText(entry);
    recording_->add(recorded);
}

void MeetingConsole::play(HidController& meeting)
{
    while (!quit_ && !gone_) {
        (void)loop_.waitUntil(
            journal_, [this] { return gone_ || input_.hasLine() || input_.ended(); });
        if (const auto line = input_.take())
            obey(meeting, *line);
        else if (input_.ended())
            return;
        QCoreApplication::processEvents(); // events of the device go between two commands
    }
}

void MeetingConsole::obey(HidController& meeting, const std::string& input)
{
    const std::string line = text::lowerCase(input);
    if (line.empty())
        return;
    if (const std::string reason = obstacle(meeting, line); !reason.empty())
        complain(reason);
    else if (line == "ring")
        meeting.toggleRing();
    else if (line == "pickup")
        meeting.togglePickup();
    else if (line == "hangup")
        meeting.toggleHangup();
    else if (line == "mute")
        meeting.toggleMuteUnmute();
    else if (line == "quit")
        quit_ = true;
    else if (line == "help")
        complain("commands: ring, pickup, hangup, mute, quit, help");
    else
        complainAbout(input);
}

} // namespace ctl
