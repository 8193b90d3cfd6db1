#include "tools/ctl/cli/command_model.h"

#include <algorithm>

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

bool takesFiles(const OptionModel& argument)
{
    return argument.argument.find("FILE") != std::string::npos;
}

bool takesFiles(const CommandModel& command)
{
    return std::any_of(command.positionals.begin(), command.positionals.end(),
        [](const OptionModel& argument) { return takesFiles(argument); });
}

bool takesProgram(const CommandModel& command)
{
    return std::any_of(command.positionals.begin(), command.positionals.end(),
        [](const OptionModel& argument) { return argument.argument == "PROGRAM"; });
}

std::string zshArgument(const OptionModel& argument)
{
    if (takesFiles(argument))
        return "_files";
    return argument.argument == "PROGRAM" ? "_normal" : " ";
}

std::string zshOption(const OptionModel& option)
{
    std::string lines;
    for (const std::string& name : option.names) {
        std::string spec = name + '[' + zshEscaped(option.description) + ']';
        if (!option.argument.empty())
            spec += ':' + zshEscaped(option.argument) + ':' + zshArgument(option);
        lines += "        " + shellWord(spec) + " \\\n";
    }
    return lines;
}

std::string zshPositional(const OptionModel& argument)
{
    const char* const kind = argument.repeated ? "*::" : argument.required ? ":" : "::";
    return "        "
        + shellWord(kind + zshEscaped(argument.argument) + ':' + zshArgument(argument)) + " \\\n";
}

std::string fishOption(const OptionModel& option, const std::string& condition)
{
    std::string line = "complete -c kelprobectl -n " + shellWord(condition);
    for (const std::string& name : option.names)
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    if (!option.argument.empty())
        line += takesFiles(option) ? " -r -F" : " -x";
    return line + " -d " + shellWord(option.description) + '\n';
}

} // namespace

std::string bashCompletion(const CommandModel& program)
{
    std::string text = R"(# bash completion for kelprobectl
_kelprobectl()
{
    local word=${COMP_WORDS[COMP_CWORD]} command= i options
    for ((i = 1; i < COMP_CWORD; i++)); do
        [[ ${COMP_WORDS[i]} == -* ]] || { command=${COMP_WORDS[i]}; break; }
    done
    COMPREPLY=()
    case $command in
)";
    text += "    '') options=" + shellWord(commandNames(program) + ' ' + optionNames(program))
        + " ;;\n";
    for (const CommandModel& command : program.commands) {
        text += "    " + command.name + ") options=" + shellWord(optionNames(command));
        if (takesProgram(command))
            text += "; [[ $word == -* ]] || { COMPREPLY=($(compgen -c -- \"$word\")); return; }";
        else if (takesFiles(command))
            text += "; [[ $word == -* ]] || { COMPREPLY=($(compgen -f -- \"$word\")); return; }";
        text += " ;;\n";
    }
    return text + R"(    esac
    COMPREPLY=($(compgen -W "$options" -- "$word"))
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
        text += fishOption(option, "__fish_use_subcommand");
    for (const CommandModel& command : program.commands) {
        const std::string condition = "__fish_seen_subcommand_from " + command.name;
        text += "complete -c kelprobectl -n __fish_use_subcommand -a " + command.name + " -d "
            + shellWord(command.description) + '\n';
        for (const OptionModel& option : command.options)
            text += fishOption(option, condition);
        if (takesFiles(command) || takesProgram(command))
            text += "complete -c kelprobectl -n " + shellWord(condition) + " -F\n";
    }
    return text;
}

} // namespace ctl
