#include "tools/ctl/cli/command.h"
#include "tools/ctl/cli/command_model.h"
#include "tools/ctl/cli/output.h"
#include "tools/text/printable.h"
#include "tools/text/suggestion.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <sstream>

namespace ctl {
namespace {

constexpr std::string_view kHelp = "help"; // as a command
constexpr const char* kVersion = "kelprobectl " KELPROBE_VERSION;

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
    const auto option = std::find_if(
        extra.begin(), extra.end(), [](const std::string& word) { return word.starts_with('-'); });
    return option == extra.end() ? extra.front() : option->substr(0, option->find('='));
}

std::string unexpected(const CLI::App& app, const std::string& word)
{
    const CLI::App& command = chosenCommand(app);
    const std::vector<std::string> names = candidates(command, word);
    const bool isName = std::find(names.begin(), names.end(), word) != names.end(); // after --
    const std::string quoted = word.empty() ? "\"\"" : text::printable(word);
    if (isName || (!word.starts_with('-') && command.get_subcommands(nullptr).empty()))
        return "unexpected argument " + quoted;
    const std::vector<std::string_view> views(names.begin(), names.end());
    const std::string_view suggestion = text::nearest(word, views);
    return (word.starts_with('-') ? "unknown option " : "unknown command ") + quoted
        + (suggestion.empty() ? "" : "; did you mean " + std::string(suggestion) + '?');
}

// CLI11's words for the mistake, without control characters.
std::string wordsOf(const CLI::ParseError& error)
{
    constexpr std::string_view flagWithValue = " was given a disallowed flag override";
    const std::string words = text::printable(error.what());
    if (!words.ends_with(flagWithValue))
        return words;
    return "--" + words.substr(0, words.size() - flagWithValue.size()) + " takes no value";
}

int reportMistake(const CLI::App& app, const CLI::ParseError& error)
{
    const std::vector<std::string> extra = app.remaining(true);
    const CLI::App& command = chosenCommand(app);
    const std::string mistake = !extra.empty() ? unexpected(app, firstMistake(extra))
        : &command == &app && error.get_name() == "RequiredError" ? "a command is required"
                                                                  : wordsOf(error);
    Output::err().line("kelprobectl: " + mistake);
    Output::err().line(
        "Try kelprobectl " + (&command == &app ? "" : command.get_name() + ' ') + "--help.");
    return kWrongUse;
}

int printRequested(const CLI::App& app, const CLI::ParseError& request)
{
    std::ostringstream text;
    std::ostringstream none;
    app.exit(request, text, none);
    std::string lines = text.str();
    while (lines.ends_with('\n'))
        lines.pop_back();
    Output::out().line(lines);
    return kFine;
}

// A hidden command that the build runs: prints a completion or the man page.
void addGenerateCommand(CLI::App& app, Run& run)
{
    struct Kind {
        const char* name;
        const char* description;
        std::string (*generate)(const CommandModel&);
    };
    static constexpr Kind kinds[] = {
        {"bash", "The completion for bash", bashCompletion},
        {"zsh", "The completion for zsh", zshCompletion},
        {"fish", "The completion for fish", fishCompletion},
        {"man", "The man page", manPage},
    };
    CLI::App* const command = app.add_subcommand("generate", "Print a completion or the man page");
    command->group("")->require_subcommand(1);
    command->footer("Example: kelprobectl generate man | man -l -");
    for (const auto& [name, description, generate] : kinds)
        command->add_subcommand(name, description)
            ->group("Kinds")
            ->callback([&app, &run, generate = generate] {
                run = [&app, generate] {
                    std::string text = generate(modelOf(app));
                    text.pop_back(); // line() adds the last line end
                    Output::out().line(text);
                    return kFine;
                };
            });
}

// For completions, the man page and suggestions: helpArguments() replaces it.
void addHelpCommand(CLI::App& app)
{
    CLI::App* const command
        = app.add_subcommand(std::string(kHelp), "Print the help of kelprobectl or a command");
    command->add_option("COMMAND", "The command");
    command->footer("Example: kelprobectl help describe");
}

// What every command has.
void addCommonOptions(CLI::App& app)
{
    for (CLI::Option* const option : app.get_options(
             [](const CLI::Option* candidate) { return candidate->get_items_expected_max() == 0; }))
        option->disable_flag_override(); // "--json=no" would be a mistake
    for (CLI::App* const command : app.get_subcommands(nullptr)) {
        command->set_version_flag("--version", kVersion)->group("");
        addCommonOptions(*command);
    }
}

// "COMMAND --help" for "help COMMAND".
std::vector<const char*> helpArguments(int argc, char** argv)
{
    std::vector<const char*> arguments(argv, argv + argc);
    arguments.erase(arguments.begin() + 1);
    arguments.push_back("--help");
    return arguments;
}

int parseAndRun(int argc, char** argv, std::span<const AddCommand> commands)
{
    CLI::App app("Shows, explains and checks the call controls of USB HID devices.", "kelprobectl");
    app.set_version_flag("--version", kVersion, "Print the version and exit");
    app.set_help_flag("-h,--help", "Print this text and exit");
    app.require_subcommand(1);
    app.footer("A DEVICE is vvvv:pppp, a path or a line number of list.\n"
               "Exit status: 0 fine, 1 the device fell short, 2 wrong use, 3 no device or access.\n"
               "Example: kelprobectl describe 1209:0001");
    Run run;
    for (const AddCommand add : commands)
        add(app, run);
    if (commands.size() > 1) { // kelprobectl with one command is never asked for these
        addHelpCommand(app);
        addGenerateCommand(app, run);
    }
    addCommonOptions(app);
    const bool isHelp = argc > 1 && std::string_view(argv[1]) == kHelp;
    const std::vector<const char*> arguments
        = isHelp ? helpArguments(argc, argv) : std::vector<const char*>(argv, argv + argc);
    try {
        app.parse(static_cast<int>(arguments.size()), arguments.data());
    } catch (const CLI::ParseError& error) {
        const bool requested = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)
            && !(isHelp && !app.remaining(true).empty());
        return requested ? printRequested(app, error) : reportMistake(app, error);
    }
    return run();
}

// Makes write() fail at the limit of the size of files, so that the error is reported.
void surviveFileSizeLimit()
{
    // A program that is started would inherit SIG_IGN, but no handler.
    if (std::signal(SIGXFSZ, [](int) {}) == SIG_IGN)
        std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace

int runCommandLine(int argc, char** argv, std::span<const AddCommand> commands)
{
    surviveFileSizeLimit();
    try {
        return parseAndRun(argc, argv, commands);
    } catch (const Failure& failure) {
        Output::err().line(std::string("kelprobectl: ") + failure.what());
        return failure.status;
    } catch (const std::exception& error) {
        Output::err().line(std::string("kelprobectl: ") + error.what());
        return kNoAccess;
    }
}

} // namespace ctl
