#include "sim/console/bench_command.h"

#include "sim/bench/command.h"
#include "sim/control/control_client.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <memory>

namespace sim {
namespace {

constexpr const char* kSocketOption = "--socket";

// In the line that is sent, words are between blanks.
std::string lineOf(const std::string& device, const CLI::App& command)
{
    std::string line = device + (device.empty() ? "" : " ") + command.get_name();
    for (const std::string& word : command.remaining()) {
        if (std::ranges::any_of(word, [](char c) { return c == '\n' || c == '\0'; }))
            throw WrongUse("an argument may not contain a line end");
        line += ' ' + word;
    }
    return line;
}

std::string oneLine(std::string_view text)
{
    std::string line(text);
    std::ranges::replace(line, '\n', ' ');
    return line;
}

} // namespace

std::string takeDeviceNumber(std::vector<std::string>& words)
{
    const auto isNumber = [](const std::string& word) {
        return word.size() > 1 && word.back() == ':'
            && std::all_of(
                word.begin(), word.end() - 1, [](unsigned char c) { return std::isdigit(c) != 0; });
    };
    const bool hasSocket = !words.empty() && words.front() == kSocketOption;
    const auto place
        = words.begin() + std::min<std::ptrdiff_t>(hasSocket ? 2 : 0, std::ssize(words));
    if (place == words.end() || !isNumber(*place))
        return {};
    const std::string number = *place;
    words.erase(place);
    return number;
}

void addBenchCommands(CLI::App& app, const std::string& device, Run& run)
{
    const auto socket = std::make_shared<std::string>();
    app.add_option(kSocketOption, *socket,
           "The control socket of the bench; default: that of the bench in which this runs")
        ->type_name("PATH");
    for (const Command& command : commands()) {
        if (command.name == "help" || command.help.empty())
            continue; // help is that of the program
        CLI::App* const added
            = app.add_subcommand(std::string(command.name), oneLine(command.help));
        added->group("For a running bench")->prefix_command();
        added->footer("usage: kelprobe-sim " + std::string(command.name) + ' '
            + std::string(command.arguments));
        added->callback([added, socket, device, &run] {
            run = [socket, line = lineOf(device, *added)] { return sendCommand(*socket, line); };
        });
    }
}

} // namespace sim
