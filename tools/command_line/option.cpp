#include "tools/command_line/option.h"

#include <CLI/CLI.hpp>

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

Option& Option::range(int least, int most)
{
    option_->check(CLI::Range(least, most).description(""));
    return *this;
}

Option& Option::excludes(Option other)
{
    option_->excludes(other.option_);
    return *this;
}

} // namespace command_line
