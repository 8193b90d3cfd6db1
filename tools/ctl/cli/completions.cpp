#include "tools/ctl/cli/command_model.h"

namespace ctl {
namespace {

// The text as one word of a shell.
std::string shellWord(std::string_view text)
{
    std::string word = "'";
    for (const char c : text)
        word += c == '\'' ? "'\\''" : std::string(1, c);
    return word + '\'';
}

// The same inside zsh's "[...]" and before its ":".
std::string zshEscaped(std::string_view text)
{
    std::string escaped;
    for (const char c : text) {
        if (c == '[' || c == ']' || c == ':' || c == '\\')
            escaped += '\\';
        escaped += c;
    }
    return escaped;
}

std::string optionNames(const CommandModel& command)
{
    std::string names;
    for (const OptionModel& option : command.options)
        for (const std::string& name : option.names)
            names += (names.empty() ? "" : " ") + name;
    return names;
}

std::string commandNames(const CommandModel& program)
{
    std::string names;
    for (const CommandModel& command : program.commands)
        names += (names.empty() ? "" : " ") + command.name;
    return names;
}

using Values = OptionModel::Values;

Values positionalValues(const CommandModel& command)
{
    return command.positionals.empty() ? Values::kNone : command.positionals.front().values;
}

// What bash runs to complete the argument of an option, or a positional argument. The functions are
// those of the completion.
std::string bashAction(Values values, const CommandModel& program)
{
    switch (values) {
    case Values::kNone:
        return "COMPREPLY=()";
    case Values::kFile:
        return "_kelprobectl_offer -f";
    case Values::kCommand:
        return "_kelprobectl_offer -c";
    case Values::kProgramAndArguments:
        return "_kelprobectl_program";
    case Values::kOwnCommand:
        return "_kelprobectl_offer -W " + shellWord(commandNames(program));
    }
    return "";
}

std::string bashCommand(const CommandModel& command, const CommandModel& program)
{
    std::string text = "    " + command.name + ")\n        case $previous in\n";
    for (const OptionModel& option : command.options) {
        if (option.argument.empty())
            continue;
        std::string names;
        for (const std::string& name : option.names)
            names += (names.empty() ? "" : "|") + name;
        text += "        " + names + ") " + bashAction(option.values, program) + "; return ;;\n";
    }
    text += "        esac\n        options=" + shellWord(optionNames(command)) + '\n';
    const Values values = positionalValues(command);
    if (values == Values::kProgramAndArguments)
        text += "        " + bashAction(values, program) + " && return\n";
    else if (values != Values::kNone)
        text += "        [[ $word == -* ]] || { " + bashAction(values, program) + "; return; }\n";
    return text + "        ;;\n";
}

std::string zshAction(Values values)
{
    switch (values) {
    case Values::kNone:
        return " ";
    case Values::kFile:
        return "_files";
    case Values::kCommand:
        return "_command_names -e";
    case Values::kProgramAndArguments:
        return "_normal";
    case Values::kOwnCommand:
        return "_kelprobectl_commands";
    }
    return "";
}

std::string fishAction(Values values, const CommandModel& program)
{
    switch (values) {
    case Values::kNone:
        return " -x";
    case Values::kFile:
        return " -r -F";
    case Values::kCommand:
        return " -x -a '(__fish_complete_command)'";
    case Values::kProgramAndArguments:
        return " -x -a '(__fish_complete_subcommand --fcs-skip=2)'";
    case Values::kOwnCommand:
        return " -x -a " + shellWord(commandNames(program));
    }
    return "";
}

std::string zshOption(const OptionModel& option)
{
    std::string lines;
    for (const std::string& name : option.names) {
        std::string spec = name + '[' + zshEscaped(option.description) + ']';
        if (!option.argument.empty())
            spec += ':' + zshEscaped(option.argument) + ':' + zshAction(option.values);
        lines += "        " + shellWord(spec) + " \\\n";
    }
    return lines;
}

std::string zshPositional(const OptionModel& argument)
{
    const char* const kind = argument.repeated ? "*::" : argument.required ? ":" : "::";
    return "        "
        + shellWord(kind + zshEscaped(argument.argument) + ':' + zshAction(argument.values))
        + " \\\n";
}

std::string fishOption(
    const OptionModel& option, const std::string& condition, const CommandModel& program)
{
    std::string line = "complete -c kelprobectl -n " + shellWord(condition);
    for (const std::string& name : option.names)
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    if (!option.argument.empty())
        line += fishAction(option.values, program);
    return line + " -d " + shellWord(option.description) + '\n';
}

} // namespace

std::string bashCompletion(const CommandModel& program)
{
    std::string text = R"(# bash completion for kelprobectl

# Offers the words that compgen makes with these options. They may contain blanks.
_kelprobectl_offer()
{
    mapfile -t COMPREPLY < <(compgen "$@" -- "$word")
}

# The program after "--", and its arguments.
_kelprobectl_program()
{
    ((programAt)) || return
    if ((COMP_CWORD == programAt)); then
        _kelprobectl_offer -c
    else
        _kelprobectl_offer -f
    fi
}

_kelprobectl()
{
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command= programAt=0 options= i
    # bash takes "--option=value" for three words.
    if [[ $word == = ]]; then
        word=
    elif [[ $previous == = ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
        --) programAt=$((i + 1)); previous=; break ;;
        -*) ;;
        *) command=${command:-${COMP_WORDS[i]}} ;;
        esac
    done
    COMPREPLY=()
    case $command in
)";
    text += "    '') options=" + shellWord(commandNames(program) + ' ' + optionNames(program))
        + " ;;\n";
    for (const CommandModel& command : program.commands)
        text += bashCommand(command, program);
    return text + R"(    esac
    _kelprobectl_offer -W "$options"
}
complete -o filenames -o bashdefault -F _kelprobectl kelprobectl
)";
}

std::string zshCompletion(const CommandModel& program)
{
    std::string text
        = "#compdef kelprobectl\n\n_kelprobectl_commands() {\n    local -a commands=(\n";
    for (const CommandModel& command : program.commands)
        text += "        " + shellWord(command.name + ':' + zshEscaped(command.description)) + '\n';
    text += "    )\n    _describe command commands\n}\n\n_kelprobectl() {\n"
            "    local state line\n    _arguments -C \\\n";
    for (const OptionModel& option : program.options)
        text += zshOption(option);
    text += "        '1:command:_kelprobectl_commands' \\\n        '*::argument:->arguments'\n"
            "    [[ $state == arguments ]] || return\n    case $line[1] in\n";
    for (const CommandModel& command : program.commands) {
        text += "    " + command.name + ")\n        _arguments \\\n";
        for (const OptionModel& option : command.options)
            text += zshOption(option);
        for (const OptionModel& argument : command.positionals)
            text += zshPositional(argument);
        text += "        && return\n        ;;\n";
    }
    return text + "    esac\n}\n\n_kelprobectl \"$@\"\n";
}

std::string fishCompletion(const CommandModel& program)
{
    std::string text = "# fish completion for kelprobectl\ncomplete -c kelprobectl -f\n";
    for (const OptionModel& option : program.options)
        text += fishOption(option, "__fish_use_subcommand", program);
    for (const CommandModel& command : program.commands) {
        const std::string condition = "__fish_seen_subcommand_from " + command.name;
        text += "complete -c kelprobectl -n __fish_use_subcommand -a " + command.name + " -d "
            + shellWord(command.description) + '\n';
        for (const OptionModel& option : command.options)
            text += fishOption(option, condition, program);
        if (const Values values = positionalValues(command); values != Values::kNone)
            text += "complete -c kelprobectl -n " + shellWord(condition)
                + fishAction(values, program) + '\n';
    }
    return text;
}

} // namespace ctl
