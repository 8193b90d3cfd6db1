#include "sim/console/help_format.h"

#include "sim/bench/command.h"

#include <algorithm>
#include <sstream>

namespace sim {
namespace {

// Empty if CLI11 knows all arguments.
std::string usageOf(const CLI::App& command)
{
    const std::string& name = command.get_name();
    if (name == "run")
        return "run [OPTIONS] [FILE|PROFILE]... -- PROGRAM [ARGUMENT...]";
    if (name == "replay")
        return "replay [OPTIONS] RECORDING -- PROGRAM [ARGUMENT...]";
    const auto found = std::ranges::find(commands(), name, &Command::name);
    return found == commands().end() ? "" : usageOf(*found);
}

} // namespace

std::string HelpFormat::make_usage(const CLI::App* app, std::string name) const
{
    const std::string usage = usageOf(*app);
    return usage.empty() ? Formatter::make_usage(app, std::move(name))
                         : "Usage: kelprobe-sim " + usage + '\n';
}

// In the list, a command with arguments begins with its usage.
std::string HelpFormat::make_subcommand(const CLI::App* command) const
{
    const bool hasArguments
        = command->get_group() == kBenchGroup && usageOf(*command) != command->get_name();
    std::ostringstream line;
    CLI::detail::format_help(line, command->get_name(),
        (hasArguments ? usageOf(*command) + ":\n" : "") + command->get_description(),
        column_width_);
    return line.str();
}

} // namespace sim
