#include "sim/bench/command.h"

#include "sim/bench/bench.h"
#include "sim/bench/command_words.h"

#include <json/value.h>

#include <algorithm>
#include <cctype>
#include <utility>

namespace sim {
namespace {

constexpr std::string_view kJson = "--json";
constexpr std::string_view kHold = "--hold";
constexpr std::string_view kWithin = "--within";

CommandResult notUnderstood(const std::string& error)
{
    return {kNotUnderstood, error};
}

const Command* findCommand(std::string_view name)
{
    const auto list = commands();
    const auto found = std::ranges::find(list, name, &Command::name);
    return found == list.end() ? nullptr : &*found;
}

CommandResult unknownCommand(std::string_view name)
{
    std::vector<std::string_view> names;
    for (const Command& command : commands())
        if (!command.help.empty())
            names.push_back(command.name);
    const std::string hint = suggestion(name, names);
    return notUnderstood(
        "unknown command " + std::string(name) + (hint.empty() ? "; try help" : hint));
}

// Moves the options from `words` to `call`. Returns what is wrong with them.
std::string takeOptions(
    const Command& command, std::span<const std::string_view> words, CommandCall& call)
{
    std::vector<std::string_view> allowed;
    for (const std::string_view option : {kJson, kHold, kWithin})
        if (command.arguments.find(option) != std::string_view::npos)
            allowed.push_back(option);
    for (size_t i = 0; i < words.size(); ++i) {
        const size_t equals = words[i].find('=');
        const bool hasValue = equals != std::string_view::npos;
        const std::string_view name = words[i].substr(0, equals);
        if (!name.starts_with("--")) {
            call.words.push_back(words[i]);
        } else if (std::ranges::find(allowed, name) == allowed.end()) {
            return "unknown option " + std::string(name) + suggestion(name, allowed);
        } else if (name == kWithin) { // "--within=2s" or "--within 2s"
            const bool isNext = !hasValue && ++i < words.size();
            call.within = parseDuration(hasValue ? words[i].substr(equals + 1)
                    : isNext                     ? words[i]
                                                 : std::string_view{});
            if (!call.within)
                return "--within takes a time such as 500ms or 2s";
        } else if (hasValue) {
            return std::string(name) + " takes no value";
        } else {
            (name == kJson ? call.json : call.hold) = true;
        }
    }
    return {};
}

// Takes the number of a device from the front of a line: "2" of "2: mute". Empty if there is none.
std::string_view takeDeviceNumber(std::string_view& line)
{
    const size_t colon = line.find(':');
    if (colon == line.npos)
        return {};
    const auto before = splitWords(line.substr(0, colon));
    const auto isDigit = [](unsigned char c) { return std::isdigit(c) != 0; };
    if (before.size() != 1 || !std::ranges::all_of(before[0], isDigit))
        return {};
    line.remove_prefix(colon + 1);
    return before[0];
}

CommandOutcome execute(
    const Command& command, std::span<const std::string_view> words, CommandCall&& call)
{
    const std::string mistake = takeOptions(command, words, call);
    if (!mistake.empty())
        return notUnderstood(mistake);
    // Arguments without brackets and options are needed. None takes more than it names.
    size_t least = 0;
    size_t most = 0;
    for (std::string_view word : splitWords(command.arguments)) {
        if (word.find("--") != word.npos || word == "T]")
            continue;
        ++most;
        if (!word.starts_with('['))
            ++least;
    }
    if (command.name == "raw") // its bytes may be separated by blanks
        most = call.words.size();
    if (call.words.size() < least || call.words.size() > most)
        return notUnderstood("expected " + usageOf(command));
    return command.run(call);
}

} // namespace

void Answers::text(const std::string& line)
{
    Json::Value object;
    object["text"] = line;
    send(object);
}

std::string usageOf(const Command& command)
{
    return std::string(command.name) + (command.arguments.empty() ? "" : " ")
        + std::string(command.arguments);
}

std::string commandHelp()
{
    constexpr size_t kColumn = 22;
    std::string text = "Commands, a line each; \"2: mute\" is for the second device:\n";
    for (const Command& command : commands()) {
        if (command.help.empty())
            continue;
        std::string left = "  " + usageOf(command);
        if (left.size() >= kColumn)
            text += std::exchange(left, "") + '\n';
        std::string_view help = command.help;
        while (!help.empty()) {
            const size_t end = std::min(help.find('\n'), help.size());
            left.resize(kColumn, ' ');
            text += left + std::string(help.substr(0, end)) + '\n';
            help.remove_prefix(std::min(end + 1, help.size()));
            left.clear();
        }
    }
    return text;
}

CommandOutcome runCommand(Bench& bench, Answers& answers, std::string_view line)
{
    size_t number = 1;
    if (const std::string_view digits = takeDeviceNumber(line); !digits.empty()) {
        const auto given = parseNumber(digits);
        if (!given || *given < 1 || static_cast<size_t>(*given) > bench.devices().size())
            return notUnderstood(
                "no such device; there are " + std::to_string(bench.devices().size()));
        number = static_cast<size_t>(*given);
    }
    const auto words = splitWords(line);
    if (words.empty())
        return CommandResult{};
    const Command* const command = findCommand(words[0]);
    if (!command)
        return unknownCommand(words[0]);
    return execute(*command, std::span(words).subspan(1), {bench, bench.device(number), answers});
}

} // namespace sim
