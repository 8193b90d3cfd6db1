#include "tools/ctl/check/check.h"

#include "tools/ctl/check/check_run.h"

#include <CLI/CLI.hpp>

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

// CLI11's error text for a shell command; empty if there is nothing wrong.
std::string blankError(const std::string& command)
{
    return command.find_first_not_of(" \t\n") == std::string::npos ? "the command is empty" : "";
}

void addOptions(CLI::App& command, CheckOptions& options)
{
    const auto* const device = command.add_option("DEVICE", options.device,
        "The device: vvvv:pppp, path or number; default: the only telephony device");
    auto* const press
        = command.add_option("--press-command", options.pressCommand, "Run this to press a button")
              ->type_name("CMD")
              ->check(blankError);
    auto* const replug = command.add_flag(
        "--replug", options.replug, "Also have the person unplug the device and plug it in again");
    auto* const replugCommand
        = command.add_option("--replug-command", options.replugCommand, "The same by this command")
              ->type_name("CMD")
              ->check(blankError)
              ->excludes(replug);
    command.add_option("--recording", options.recording, "Take the presses from this recording")
        ->type_name("FILE")
        ->excludes(press)
        ->excludes(replug)
        ->excludes(replugCommand)
        ->excludes(const_cast<CLI::Option*>(device));
    command.add_option("--junit", options.junit, "Also write the results as JUnit XML")
        ->type_name("FILE");
}

// In the units of the command line.
struct Times {
    unsigned press = 20;     // s
    unsigned silence = 1000; // ms
};

void addTimes(CLI::App& command, Times& times)
{
    constexpr unsigned maxSeconds = 3600;
    constexpr unsigned minMilliseconds = 20;
    constexpr unsigned maxMilliseconds = 60'000;
    command.add_option("--time-limit", times.press, "Time for a press, in seconds")
        ->type_name("S")
        ->check(CLI::Range(1U, maxSeconds))
        ->capture_default_str();
    command
        .add_option("--silence", times.silence,
            "Time in which the device must send nothing by itself, in milliseconds")
        ->type_name("MS")
        ->check(CLI::Range(minMilliseconds, maxMilliseconds))
        ->capture_default_str();
}

} // namespace

void addCheckCommand(CLI::App& app, Run& run)
{
    const auto options = std::make_shared<CheckOptions>();
    const auto times = std::make_shared<Times>();
    CLI::App* const command = app.add_subcommand("check", kDescription);
    addOptions(*command, *options);
    addTimes(*command, *times);
    command->footer(kFooter);
    command->callback([&run, options, times] {
        options->times.press = std::chrono::seconds(times->press);
        options->times.silence = std::chrono::milliseconds(times->silence);
        run = [options] { return CheckRun(*options).run(); };
    });
}

} // namespace ctl
