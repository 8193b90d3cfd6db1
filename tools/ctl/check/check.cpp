#include "tools/ctl/check/check.h"

#include "tools/ctl/check/check_run.h"

namespace ctl {
namespace {

constexpr const char* kDescription = "Check a device's call control over the stack";

constexpr const char* kFooter
    = R"(Plays meetings and checks that the device takes every report, sends the right ones when it is
used, and none by itself. Presses are done by the person at the terminal, who also looks at the
LEDs, or by a command, or are taken from a recording. Prints TAP 14, and a summary on standard
error.

The press command is run by sh with one more argument: hook, mute, flash or busy; the replug command
with unplug, then replug. A recording needs no device. It cannot show what a device makes of
reports, nor what it sends by itself: those tests are skipped.

Exit status: 0 everything passed or was skipped, 1 a test failed, 2 wrong use, 3 no device, or the
run was not completed.

Examples:
  kelprobectl check 1209:0001 --junit result.xml
  kelprobectl check --press-command ./finger.sh
  kelprobectl check --recording meeting.hid)";

// What is wrong with a shell command; empty if nothing is.
std::string blankError(const std::string& command)
{
    return command.find_first_not_of(" \t\n") == std::string::npos ? "the command is empty" : "";
}

void addOptions(Command& command, CheckOptions& options)
{
    const Option device = command.addOption("DEVICE", options.device,
        "The device: vvvv:pppp, path or number; default: the only telephony device");
    const Option press
        = command.addOption("--press-command", options.pressCommand, "Run this to press a button")
              .placeholder("CMD")
              .check(blankError);
    const Option replug = command.addFlag(
        "--replug", options.replug, "Also have the person unplug the device and plug it in again");
    const Option replugCommand
        = command.addOption("--replug-command", options.replugCommand, "The same by this command")
              .placeholder("CMD")
              .check(blankError)
              .excludes(replug);
    command.addOption("--recording", options.recording, "Take the presses from this recording")
        .placeholder("FILE")
        .excludes(press)
        .excludes(replug)
        .excludes(replugCommand)
        .excludes(device);
    command.addOption("--junit", options.junit, "Also write the results as JUnit XML")
        .placeholder("FILE");
}

// In the units of the command line.
struct Times {
    size_t press = 20;     // s
    size_t silence = 1000; // ms
};

void addTimes(Command& command, Times& times)
{
    command
        .addOption(
            "--time-limit", times.press, "Time for a press, in seconds: 1 to 3600; default 20")
        .placeholder("S")
        .range(1, 3600);
    command
        .addOption("--silence", times.silence,
            "Time in which the device must be silent, in ms: 20 to 60000; default 1000")
        .placeholder("MS")
        .range(20, 60'000);
}

} // namespace

void addCheckCommand(Command program, Run& run)
{
    const auto options = std::make_shared<CheckOptions>();
    const auto times = std::make_shared<Times>();
    Command command = program.addCommand("check", kDescription);
    addOptions(command, *options);
    addTimes(command, *times);
    command.footer(kFooter);
    command.action(run, [options, times] {
        options->times.press = std::chrono::seconds(times->press);
        options->times.silence = std::chrono::milliseconds(times->silence);
        return CheckRun(*options).run();
    });
}

} // namespace ctl
