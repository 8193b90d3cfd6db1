#include "tools/ctl/cli/command.h"
#include "tools/ctl/cli/command_model.h"
#include "tools/ctl/cli/output.h"
#include "tools/text/suggestion.h"

#include <sstream>

namespace ctl {
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
    Output::err().line("kelprobectl: "
        + (extra.empty() ? std::string(error.what()) : unexpected(app, extra.front())));
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
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const bool requested = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success);
        return requested ? printRequested(app, error) : reportMistake(app, error);
    }
    return run();
}

} // namespace

int runCommandLine(int argc, char** argv, std::span<const AddCommand> commands)
{
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
