// Declares the commands of a program and their options. CLI11, which parses them, is not included:
// its header takes seconds to compile, so that only the files that parse include it.
#pragma once

#include "tools/command_line/option.h"

#include <functional>
#include <string>

namespace CLI {
class App;
} // namespace CLI

namespace command_line {

// What was chosen on the command line. Returns the exit status.
using Run = std::function<int()>;

// A command, or the program. A handle, which is valid as long as the CLI::App.
class Command {
public:
    explicit Command(CLI::App& app)
        : app_(&app)
    {
    }

    Command addCommand(const std::string& name, const std::string& description);

    // `names` is "-o,--option" or, of an argument, "FILE". `value` outlives the command and is
    // changed only if it is given. Value: std::string, a number, std::optional of one of them, or a
    // vector of strings, which takes all that are given. command.cpp lists the types.
    template <typename Value>
    Option addOption(const std::string& names, Value& value, const std::string& description);
    Option addFlag(const std::string& names, bool& value, const std::string& description);

    // The text after the options in the help.
    Command& footer(const std::string& text);

    // If the command is chosen, `chosen` becomes `run`.
    Command& action(Run& chosen, const Run& run);

private:
    CLI::App* app_;
};

} // namespace command_line
