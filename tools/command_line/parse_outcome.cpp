#include "tools/command_line/parse_outcome.h"

#include "tools/text/printable.h"
#include "tools/text/suggestion.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>

namespace command_line {
namespace {

// The command whose part of the command line could not be parsed.
const CLI::App& chosenCommand(const CLI::App& app)
{
    const auto chosen = app.get_subcommands();
    return chosen.empty() ? app : *chosen.front();
}

// The names that may stand in the place of `word`.
std::vector<std::string> candidates(const CLI::App& command, std::string_view word)
{
    std::vector<std::string> names;
    if (word.starts_with('-')) {
        for (const CLI::Option* const option : command.get_options())
            for (const std::string& name : option->get_lnames())
                names.push_back("--" + name);
    } else {
        for (const CLI::App* const subcommand : command.get_subcommands(nullptr))
            names.push_back(subcommand->get_name());
    }
    return names;
}

// The word that is most likely the mistake. An unknown option makes its argument an extra word,
// too.
std::string firstMistake(const std::vector<std::string>& extra)
{
    const auto option = std::ranges::find_if(
        extra, [](const std::string& word) { return word.starts_with('-'); });
    return option == extra.end() ? extra.front() : option->substr(0, option->find('='));
}

std::string unexpected(const CLI::App& command, const std::string& word)
{
    const std::vector<std::string> names = candidates(command, word);
    const bool isName = std::ranges::find(names, word) != names.end(); // after --
    const std::string quoted = word.empty() ? "\"\"" : text::printable(word);
    if (isName || (!word.starts_with('-') && command.get_subcommands(nullptr).empty()))
        return "unexpected argument " + quoted;
    const std::vector<std::string_view> views(names.begin(), names.end());
    const std::string_view suggestion = text::nearest(word, views);
    return (word.starts_with('-') ? "unknown option " : "unknown command ") + quoted
        + (suggestion.empty() ? "" : "; did you mean " + std::string(suggestion) + '?');
}

// CLI11's words for the mistake.
std::string wordsOf(const CLI::ParseError& error)
{
    constexpr std::string_view flagWithValue = " was given a disallowed flag override";
    std::string words = text::printable(error.what());
    if (!words.ends_with(flagWithValue))
        return words;
    return "--" + words.substr(0, words.size() - flagWithValue.size()) + " takes no value";
}

} // namespace

bool isRequest(const CLI::ParseError& outcome)
{
    return outcome.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success);
}

std::string requestedText(const CLI::App& app, const CLI::ParseError& request)
{
    std::ostringstream text;
    std::ostringstream none;
    app.exit(request, text, none);
    std::string lines = text.str();
    while (lines.ends_with('\n'))
        lines.pop_back();
    return lines;
}

std::string mistake(const CLI::App& app, const CLI::ParseError& error)
{
    const CLI::App& command = chosenCommand(app);
    if (const auto extra = app.remaining(true); !extra.empty())
        return unexpected(command, firstMistake(extra));
    const bool lacksCommand = &command == &app && error.get_name() == "RequiredError";
    return lacksCommand ? "a command is required" : wordsOf(error);
}

std::string mistakeWithRemedy(const CLI::App& app, const CLI::ParseError& error)
{
    const std::string text = mistake(app, error);
    return text.ends_with('?') ? text : text + "; try " + helpCommand(app);
}

std::string helpCommand(const CLI::App& app)
{
    const CLI::App& command = chosenCommand(app);
    const std::string name = &command == &app ? "" : command.get_name() + ' ';
    return app.get_name() + ' ' + name + "--help";
}

} // namespace command_line
