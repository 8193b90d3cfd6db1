#include "sim/console/command_line.h"

#include "sim/console/console.h"
#include "tools/text/suggestion.h"

#include <algorithm>

namespace sim {
namespace {

constexpr std::string_view kCommands[] = {"run", "list", "help"};
constexpr std::string_view kOptions[] = {"--help", "--version"};
constexpr std::string_view kRunOptions[] = {"--help"};

bool isOption(std::string_view word)
{
    return word.starts_with('-');
}

bool asksForHelp(std::string_view word)
{
    return word == "--help" || word == "-h";
}

UsageError unknown(
    const char* kind, std::string_view word, std::span<const std::string_view> candidates)
{
    std::string error = std::string("unknown ") + kind + ' ' + std::string(word);
    const std::string_view suggestion = text::nearest(word, candidates);
    if (!suggestion.empty())
        error += "; did you mean " + std::string(suggestion) + '?';
    return {error};
}

UsageError unknownProfile(std::string_view name)
{
    std::vector<std::string_view> names;
    for (const Profile& profile : profiles())
        names.push_back(profile.name);
    return unknown("profile", name, names);
}

CommandLine parseRun(char* const* arguments)
{
    RunCommand run{};
    for (; *arguments && std::string_view(*arguments) != "--"; ++arguments) {
        if (asksForHelp(*arguments))
            return HelpCommand{};
        if (isOption(*arguments))
            return unknown("option", *arguments, kRunOptions);
        const Profile* const profile = findProfile(*arguments);
        if (!profile)
            return unknownProfile(*arguments);
        run.profiles.push_back(profile);
    }
    if (!arguments[0] || !arguments[1])
        return UsageError{"run: expected -- and a program"};
    if (run.profiles.empty())
        run.profiles.push_back(&profiles().front());
    run.program = arguments + 1;
    return run;
}

} // namespace

CommandLine parseCommandLine(char* const* arguments)
{
    if (!arguments[0])
        return UsageError{"expected a command"};
    const std::string_view word = arguments[0];
    if (word == "run")
        return parseRun(arguments + 1);
    const bool help = word == "help" || asksForHelp(word);
    if (!help && word != "list" && word != "--version")
        return isOption(word) ? unknown("option", word, kOptions)
                              : unknown("command", word, kCommands);
    if (arguments[1])
        return UsageError{std::string(word) + ": unexpected argument " + arguments[1]};
    if (help)
        return HelpCommand{};
    if (word == "list")
        return ListCommand{};
    return VersionCommand{};
}

std::string helpText()
{
    return R"(usage: kelprobe-sim run [PROFILE...] -- PROGRAM [ARGUMENT...]
       kelprobe-sim list
       kelprobe-sim help | --help | --version

run      plugs in a simulated device for each PROFILE (speakerphone if there
         is none), runs PROGRAM with them and ends with it. Standard output
         shows what the devices receive and send; PROGRAM's output goes to
         standard error. Commands are read from standard input; its end does
         not end PROGRAM.
list     lists the profiles

Exit status: PROGRAM's own, or 128 + the signal that ended PROGRAM or
kelprobe-sim; 127 if PROGRAM is not found, 126 if it cannot be run; 1 if the
devices cannot be simulated, 2 for a mistake in the command line.

)" + std::string(commandHelp());
}

} // namespace sim
