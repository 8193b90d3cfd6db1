#include "tools/panel/command_line.h"

#include "tools/text/suggestion.h"

#include <CLI/CLI.hpp>
#include <sstream>

namespace panel {
namespace {

constexpr const char* kName = "kelprobe-panel";
constexpr const char* kDescription
    = "Shows the simulated devices of a bench: buttons to press, lamps, faults and a log.\n"
      "It runs on the bench: kelprobe-sim run PROFILE -- kelprobe-panel";
constexpr const char* kFooter = "Exit status: 0 when the windows were closed; 2 for a mistake on "
                                "the command line;\n3 if there is no bench or no display.";

constexpr const char* kLight = "light";
constexpr const char* kDark = "dark";

// Checks of values, as CLI11 wants them: an error, or an empty text.

std::string isDeviceNumber(const std::string& value)
{
    constexpr size_t kMaxDigits = 4;
    const bool valid = !value.empty() && value.size() <= kMaxDigits && value.front() != '0'
        && value.find_first_not_of("0123456789") == value.npos;
    return valid ? "" : "expected the number of a device, from 1, not " + value;
}

std::string isLook(const std::string& value)
{
    return value == kLight || value == kDark ? "" : "expected light or dark, not " + value;
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

// The word that is not an option or its value.
std::string unexpected(const CLI::App& app, const std::string& word)
{
    if (!word.starts_with('-'))
        return "unexpected argument " + word;
    std::vector<std::string> names;
    for (const CLI::Option* const option : app.get_options())
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    const std::vector<std::string_view> views(names.begin(), names.end());
    const std::string_view nearest = text::nearest(word, views);
    return "unknown option " + word
        + (nearest.empty() ? "; try --help" : "; did you mean " + std::string(nearest) + '?');
}

EarlyExit mistake(const std::string& text)
{
    return {kWrongUse, std::string(kName) + ": " + text};
}

} // namespace

std::variant<Options, EarlyExit> parseCommandLine(
    int argc, const char* const* argv, const char* socket)
{
    Options options;
    CLI::App app(kDescription, kName);
    app.footer(kFooter);
    app.set_help_flag("-h,--help", "Print this text and exit");
    app.set_version_flag(
        "--version", std::string(kName) + ' ' + KELPROBE_VERSION, "Print the version and exit");
    app.add_option(
           "--socket", options.socket, "Control socket of the bench; default: $KELPROBE_SIM")
        ->type_name("PATH");
    app.add_option("--device", options.device, "Show only this device; the first is 1")
        ->type_name("N")
        ->check(isDeviceNumber);
    std::string look;
    app.add_option("--theme", look, "light or dark; default: as the system")
        ->type_name("LOOK")
        ->check(isLook);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success))
            return EarlyExit{kFine, requestedText(app, error)};
        const std::vector<std::string> extra = app.remaining();
        return mistake(extra.empty() ? error.what() : unexpected(app, extra.front()));
    }
    if (!look.empty())
        options.look = look == kDark ? Look::kDark : Look::kLight;
    if (options.socket.empty() && socket)
        options.socket = socket;
    if (options.socket.empty())
        return mistake("KELPROBE_SIM is not set, so there is no bench; start it with "
                       "kelprobe-sim run PROFILE -- kelprobe-panel");
    return options;
}

} // namespace panel
