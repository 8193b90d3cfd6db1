#include "tools/ctl/meeting/meeting.h"

#include "tools/ctl/meeting/meeting_console.h"

#include <CLI/CLI.hpp>
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

void addMeetingCommand(CLI::App& app, Run& run)
{
    const auto options = std::make_shared<MeetingOptions>();
    CLI::App* const command = app.add_subcommand("meeting", kDescription);
    command->add_option("DEVICE", options->device,
        "The device: vvvv:pppp, path or number; default: the only telephony device");
    command->add_flag("--json", options->json, "Print one line of JSON for each entry");
    command
        ->add_option(
            "--record", options->recording, "Also write the reports to this file as a recording")
        ->type_name("FILE");
    command->footer(kFooter);
    command->callback([&run, options] { run = [options] { return runMeeting(*options); }; });
}

} // namespace ctl
