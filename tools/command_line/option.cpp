#include "tools/command_line/option.h"

#include <CLI/CLI.hpp>

#include <charconv>

namespace command_line {

Option& Option::required()
{
    option_->required();
    return *this;
}

Option& Option::placeholder(const std::string& name)
{
    option_->type_name(name);
    return *this;
}

// Validators without a description, which the help would show after the placeholder.

Option& Option::check(const Check& check)
{
    option_->check(CLI::Validator([check](const std::string& value) { return check(value); }, ""));
    return *this;
}

// Not CLI11's, whose words differ from version to version.
Option& Option::range(int least, int most)
{
    return check([least, most](const std::string& value) {
        int number = 0;
        const char* const end = value.data() + value.size();
        const auto [rest, error] = std::from_chars(value.data(), end, number);
        const bool isNumber = error == std::errc() && rest == end;
        return isNumber && number >= least && number <= most ? std::string()
                                                             : "expected a number from "
                + std::to_string(least) + " to " + std::to_string(most) + ", not " + value;
    });
}

Option& Option::excludes(Option other)
{
    option_->excludes(other.option_);
    return *this;
}

} // namespace command_line
