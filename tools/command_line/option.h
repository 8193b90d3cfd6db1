// An option of a command.
#pragma once

#include <functional>
#include <string>

namespace CLI {
class Option;
} // namespace CLI

namespace command_line {

// What is wrong with a value; empty if nothing is.
using Check = std::function<std::string(const std::string& value)>;

// An option, flag or argument of a command. A handle, which is valid as long as the CLI::App.
class Option {
public:
    explicit Option(CLI::Option& option)
        : option_(&option)
    {
    }

    // Each returns the object, so that calls can be chained.
    Option& required();
    Option& placeholder(const std::string& name); // stands for the value in the help
    Option& check(const Check& check);
    Option& range(int least, int most); // of a number
    Option& excludes(Option other);

private:
    CLI::Option* option_;
};

} // namespace command_line
