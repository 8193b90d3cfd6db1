#include "tools/ctl/cli/command.h"
#include "tools/ctl/cli/command_model.h"
#include "tools/ctl/cli/output.h"
#include "tools/text/suggestion.h"

#include <CLI/CLI.hpp>
#include <csignal>
#include <sstream>

namespace ctl {
namespace {

constexpr std::string_view kHelp = "help"; // as a command

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

std::string unexpected(const CLI::App& app, const std::string& word)
{
    const CLI::App& command = chosenCommand(app);
    const char* const kind = word.starts_with('-') ? "unknown option "
        : command.get_subcommands(nullptr).empty() ? "unexpected argument "
                                                   : "unknown command ";
    const std::vector<std::string> names = candidates(command, word);
    const std::vector<std::string_view> views(names.begin(), names.end());
    const std::string_view suggestion = text::nearest(word, views);
    return kind + word
        + (suggestion.empty() ? "" : "; did you mean " + std::string(suggestion) + '?');
}

int reportMistake(const CLI::App& app, const CLI::ParseError& error)
{
    const std::vector<std::string> extra = app.remaining(true);
    const CLI::App& command = chosenCommand(app);
    const std::string mistake = !extra.empty()                    ? unexpected(app, extra.front())
        : &command == &app && error.get_name() == "RequiredError" ? "a command is required"
                                                                  : error.what();
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
    static constexpr std::pair<const char*, std::string (*)(const CommandModel&)> kinds[]
        = {{"bash", bashCompletion}, {"zsh", zshCompletion}, {"fish", fishCompletion},
            {"man", manPage}};
    CLI::App* const command = app.add_subcommand("generate", "Print a completion or the man page");
    command->group("")->require_subcommand(1);
    for (const auto& [name, generate] : kinds)
        command->add_subcommand(name)->callback([&app, &run, generate = generate] {
            run = [&app, generate] {
                std::string text = generate(modelOf(app));
                text.pop_back(); // line() adds the last line end
                Output::out().line(text);
                return kFine;
            };
        });
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
    app.set_version_flag(
        "--version", "kelprobectl " KELPROBE_VERSION, "Print the version and exit");
    app.set_help_flag("-h,--help", "Print this text and exit");
    app.require_subcommand(1);
    Run run;
    for (const AddCommand add : commands)
        add(app, run);
    addGenerateCommand(app, run);
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
