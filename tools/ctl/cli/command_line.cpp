#include "tools/command_line/parse_outcome.h"
#include "tools/ctl/cli/command.h"
#include "tools/ctl/cli/command_model.h"
#include "tools/ctl/cli/output.h"

#include <CLI/CLI.hpp>
#include <csignal>

namespace ctl {
namespace {

constexpr std::string_view kHelp = "help"; // as a command
constexpr const char* kVersion = "kelprobectl " KELPROBE_VERSION;

int reportMistake(const CLI::App& app, const CLI::ParseError& error)
{
    Output::err().line("kelprobectl: " + command_line::mistake(app, error));
    Output::err().line("Try " + command_line::helpCommand(app) + '.');
    return kWrongUse;
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
        add(Command(app), run);
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
        if (!command_line::isRequest(error) || (isHelp && !app.remaining(true).empty()))
            return reportMistake(app, error);
        Output::out().line(command_line::requestedText(app, error));
        return kFine;
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
