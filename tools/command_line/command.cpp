#include "tools/command_line/command.h"

#include <CLI/CLI.hpp>

#include <optional>
#include <vector>

namespace command_line {

Command Command::addCommand(const std::string& name, const std::string& description)
{
    return Command(*app_->add_subcommand(name, description));
}

template <typename Value>
Option Command::addOption(const std::string& names, Value& value, const std::string& description)
{
    return Option(*app_->add_option(names, value, description));
}

template Option Command::addOption(const std::string&, std::string&, const std::string&);
template Option Command::addOption(
    const std::string&, std::optional<std::string>&, const std::string&);
template Option Command::addOption(
    const std::string&, std::vector<std::string>&, const std::string&);
template Option Command::addOption(const std::string&, int&, const std::string&);
template Option Command::addOption(const std::string&, size_t&, const std::string&);
template Option Command::addOption(const std::string&, std::optional<size_t>&, const std::string&);
template Option Command::addOption(const std::string&, double&, const std::string&);

Option Command::addFlag(const std::string& names, bool& value, const std::string& description)
{
    return Option(*app_->add_flag(names, value, description));
}

Command& Command::footer(const std::string& text)
{
    app_->footer(text);
    return *this;
}

Command& Command::action(Run& chosen, const Run& run)
{
    app_->callback([&chosen, run] { chosen = run; });
    return *this;
}

} // namespace command_line
