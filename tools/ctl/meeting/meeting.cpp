#include "tools/ctl/meeting/meeting.h"

#include "tools/ctl/meeting/meeting_console.h"

#include <memory>

namespace ctl {
namespace {

constexpr const char* kDescription = "Play a meeting on a device from the terminal";

constexpr const char* kFooter = R"(Commands on standard input, a line each:
  ring     an incoming call rings, also during a call
  pickup   answer the ringing call
  hangup   reject the ringing call
  mute     mute or unmute the call
  quit     end the meeting; so does the end of the input
  help     print this list

Prints every report in both directions, every event from the device and every log line, in the
order in which they happen. At the end the device is on-hook with its lamps off.

Exit status: 0 fine, 1 the device did not take a report or gets none, 2 wrong use, 3 it cannot be
opened or has gone.

Example: (echo ring; sleep 20) | kelprobectl meeting 1209:0001)";

int runMeeting(const MeetingOptions& options)
{
    return MeetingConsole(options).run();
}

} // namespace

void addMeetingCommand(Command program, Run& run)
{
    const auto options = std::make_shared<MeetingOptions>();
    Command command = program.addCommand("meeting", kDescription);
    command.addOption("DEVICE", options->device,
        "The device: vvvv:pppp, path or number; default: the only telephony device");
    command.addFlag("--json", options->json, "Print one line of JSON for each entry");
    command
        .addOption(
            "--record", options->recording, "Also write the reports to this file as a recording")
        .placeholder("FILE");
    command.footer(kFooter);
    command.action(run, [options] { return runMeeting(*options); });
}

} // namespace ctl
