#include "sim/console/command_line.h"

#include "sim/console/bench_command.h"
#include "sim/console/device_commands.h"
#include "sim/console/help_format.h"
#include "sim/profile/profile.h"
#include "tools/command_line/parse_outcome.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace sim {
namespace {

constexpr int kFailure = 1;
constexpr int kWrongUse = 2;

constexpr const char* kDescription
    = "Runs programs with simulated USB HID devices, and operates the devices.";

constexpr const char* kFooter
    = R"(Standard input of run and replay takes the commands for a running bench, too,
one in a line. "2: press mute" is for the second device.

Exit status of run and replay: that of PROGRAM, or 128 + the signal that ended
PROGRAM or kelprobe-sim; 127 if PROGRAM is not found, 126 if it cannot be run;
1 if the devices cannot be simulated, a replay differs or standard output cannot
be written; 2 for a mistake in the command line or in a file. Of the commands for
a running bench: 0 done, 1 an expectation was not met, the device cannot do it or
standard output cannot be written, 2 not understood, 3 there is no bench.

Example: kelprobe-sim run speakerphone -- sh -c 'kelprobectl list; kelprobe-sim devices')";

struct Words {
    std::vector<std::string> own;
    std::optional<std::vector<std::string>> program;
};

// Splits the words: those before "--", and the program with its arguments after it.
Words splitWords(int argc, char** argv)
{
    Words words;
    const std::vector<std::string> all(argv + std::min(argc, 1), argv + argc);
    const auto separator = std::ranges::find(all, "--");
    words.own.assign(all.begin(), separator);
    if (separator != all.end())
        words.program.emplace(separator + 1, all.end());
    if (!words.own.empty() && words.own[0] == "help") { // "COMMAND --help" for "help COMMAND"
        words.own.erase(words.own.begin());
        words.own.push_back("--help");
    }
    return words;
}

int parseAndRun(Words words)
{
    CLI::App app(kDescription, "kelprobe-sim");
    app.set_version_flag(
        "--version", "kelprobe-sim " KELPROBE_VERSION, "Print the version and exit");
    app.set_help_flag("-h,--help", "Print this text and exit");
    app.require_subcommand(1);
    app.formatter(std::make_shared<HelpFormat>());
    app.footer(kFooter);
    Run run;
    addDeviceCommands(command_line::Command(app), words.program, run);
    const std::string device = takeDeviceNumber(words.own);
    addBenchCommands(app, device, run);
    std::ranges::reverse(words.own); // as CLI11 takes them
    try {
        app.parse(words.own);
    } catch (const CLI::ParseError& error) {
        if (!command_line::isRequest(error))
            throw WrongUse(command_line::mistakeWithRemedy(app, error));
        printf("%s\n", command_line::requestedText(app, error).c_str());
        return EXIT_SUCCESS;
    }
    if (!device.empty() && app.get_subcommands().front()->get_group() != kBenchGroup)
        throw WrongUse("only commands for a running bench take the number of a device");
    const bool takesProgram = app.got_subcommand("run") || app.got_subcommand("replay");
    if (words.program && !takesProgram)
        throw WrongUse("only run and replay take a program after --");
    return run();
}

} // namespace

int runCommandLine(int argc, char** argv)
{
    try {
        return parseAndRun(splitWords(argc, argv));
    } catch (const WrongUse& error) {
        fprintf(stderr, "kelprobe-sim: %s\n", error.what());
        return kWrongUse;
    } catch (const ProfileError& error) {
        for (const std::string& mistake : error.mistakes)
            fprintf(stderr, "kelprobe-sim: %s\n", mistake.c_str());
        return kWrongUse;
    } catch (const std::exception& error) {
        fprintf(stderr, "kelprobe-sim: %s\n", error.what());
        return kFailure;
    }
}

} // namespace sim
