#include "tools/ctl/cli/command_model.h"

#include <CLI/CLI.hpp>

namespace ctl {
namespace {

// The words that the commands use for their arguments.
OptionModel::Values valuesOf(const std::string& argument)
{
    using Values = OptionModel::Values;
    if (argument == "FILE" || argument == "OUT" || argument == "DEVICE|FILE")
        return Values::kFile;
    if (argument == "CMD")
        return Values::kCommand;
    if (argument == "PROGRAM")
        return Values::kProgramAndArguments;
    return argument == "COMMAND" ? Values::kOwnCommand : Values::kNone;
}

OptionModel modelOf(const CLI::Option& option)
{
    OptionModel model;
    for (const std::string& name : option.get_snames())
        model.names.push_back('-' + name);
    for (const std::string& name : option.get_lnames())
        model.names.push_back("--" + name);
    const bool isFlag = option.get_items_expected_max() == 0;
    if (!isFlag)
        model.argument = option.nonpositional() ? option.get_type_name() : option.get_name(true);
    model.values = valuesOf(model.argument);
    model.description = option.get_description();
    model.required = option.get_required();
    model.repeated = option.get_items_expected_max() > 1;
    return model;
}

} // namespace

CommandModel modelOf(const CLI::App& app)
{
    CommandModel model{app.get_name(), app.get_description(), app.get_footer(), {}, {}, {}};
    for (const CLI::Option* const option : app.get_options())
        if (!option->get_group().empty())
            (option->nonpositional() ? model.options : model.positionals)
                .push_back(modelOf(*option));
    for (const CLI::App* const command : app.get_subcommands(nullptr))
        if (!command->get_group().empty())
            model.commands.push_back(modelOf(*command));
    return model;
}

} // namespace ctl
