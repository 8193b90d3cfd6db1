#include "sim/console/bench_command.h"

#include "sim/bench/command.h"
#include "sim/bench/command_words.h"
#include "sim/console/help_format.h"
#include "sim/control/control_client.h"

#include <CLI/CLI.hpp>

#include <algorithm>
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

} // namespace

std::string takeDeviceNumber(std::vector<std::string>& words)
{
    auto place = words.begin();
    if (place != words.end() && place->starts_with(kSocketOption))
        place += std::min<std::ptrdiff_t>(*place == kSocketOption ? 2 : 1, std::ssize(words));
    if (place == words.end())
        return {};
    const std::string word = *place;
    const size_t digits = std::min(word.find_first_not_of("0123456789"), word.size());
    if (digits == 0 || word[digits] != ':')
        return {};
    place = words.erase(place);
    const auto rest = splitWords(std::string_view(word).substr(digits + 1));
    words.insert(place, rest.begin(), rest.end());
    return word.substr(0, digits + 1);
}

void addBenchCommands(CLI::App& app, const std::string& device, Run& run)
{
    const auto socket = std::make_shared<std::string>();
    app.add_option(kSocketOption, *socket,
           "The control socket of the bench for a command;\n"
           "default: that of the bench in which this runs")
        ->type_name("PATH");
    for (const Command& command : commands()) {
        if (command.name == "help" || command.help.empty())
            continue; // help is that of the program
        CLI::App* const added
            = app.add_subcommand(std::string(command.name), std::string(command.help));
        added->group(kBenchGroup)->prefix_command()->footer("");
        added->callback([added, socket, device, &run] {
            run = [socket, line = lineOf(device, *added)] { return sendCommand(*socket, line); };
        });
    }
}

} // namespace sim
