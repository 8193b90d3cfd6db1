#include "tools/panel/command_line.h"

#include "tools/command_line/parse_outcome.h"

#include <CLI/CLI.hpp>

namespace panel {
namespace {

constexpr const char* kName = "kelprobe-panel";
constexpr const char* kDescription
    = "Shows the simulated devices of a bench: buttons to press, lamps, faults and a log.\n"
      "It runs on the bench: kelprobe-sim run PROFILE -- kelprobe-panel";
constexpr const char* kFooter
    = "Exit status: 0 when the windows were closed; 2 for a mistake on the command line, or if\n"
      "KELPROBE_SIM is not set or there is no such device; 3 if there is no bench or display, a\n"
      "QML module is missing, or standard output cannot be written.";

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

std::string isPath(const std::string& value)
{
    return value.empty() ? "expected a path" : "";
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
        ->type_name("PATH")
        ->check(isPath);
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
        if (command_line::isRequest(error))
            return EarlyExit{kFine, command_line::requestedText(app, error)};
        return mistake(command_line::mistakeWithRemedy(app, error));
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
