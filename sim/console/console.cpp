#include "sim/console/console.h"

#include "sim/console/line_reader.h"

#include <charconv>
#include <cstdio>
#include <iterator>

namespace sim {
namespace {

constexpr std::string_view kBlanks = " \t\r";

std::string_view trim(std::string_view text)
{
    const size_t begin = text.find_first_not_of(kBlanks);
    if (begin == text.npos)
        return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

// Takes the first word off `text`.
std::string_view takeWord(std::string_view& text)
{
    const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
    text = trim(text.substr(word.size()));
    return word;
}

// A number from 0; nothing for any other text.
std::optional<int> number(std::string_view text)
{
    int value = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || value < 0)
        return std::nullopt;
    return value;
}

// These return false for words they cannot use.

bool hook(Station& station, std::string_view position)
{
    if (position.empty())
        station.press(Button::kHook);
    else if (position == "off")
        station.moveHook(HookPosition::kOffHook);
    else if (position == "on")
        station.moveHook(HookPosition::kOnHook);
    else
        return false;
    return true;
}

bool raw(Station& station, std::string_view text)
{
    const auto report = fromHex(text);
    if (!report || report->empty())
        return false;
    station.sendRaw(*report);
    return true;
}

bool fault(Station& station, std::string_view words)
{
    const std::string_view name = takeWord(words);
    const std::optional<int> count = number(words);
    return (count || words.empty()) && station.setFault(name, count);
}

template <Button button>
bool press(Station& station, std::string_view)
{
    station.press(button);
    return true;
}

template <void (Station::*action)()>
bool perform(Station& station, std::string_view)
{
    (station.*action)();
    return true;
}

bool help(Station&, std::string_view)
{
    fputs(commandHelp().data(), stdout);
    fflush(stdout);
    return true;
}

struct Command {
    std::string_view name;
    bool (*run)(Station& station, std::string_view words);
};

constexpr Command kCommands[] = {
    {"hook", hook},
    {"mute", press<Button::kMute>},
    {"flash", press<Button::kFlash>},
    {"busy", press<Button::kBusy>},
    {"raw", raw},
    {"unplug", perform<&Station::unplug>},
    {"replug", perform<&Station::replug>},
    {"fault", fault},
    {"help", help},
};

bool runCommand(Station& station, std::string_view words)
{
    const std::string_view name = takeWord(words);
    for (const Command& command : kCommands) {
        if (command.name == name)
            return command.run(station, words);
    }
    return false;
}

} // namespace

std::string_view commandHelp()
{
    return R"(Commands, a line each; "2: mute" is for the second device:
  hook [off|on]   press the hook switch: change its position, or say which
  mute            press and release the mute button; likewise flash and busy
  raw HEX         send an input report, as on the wire
  unplug          pull the plug; replug pulls it and puts it in (again)
  fault NAME [N]  from now on, or the next N times:
                  claim, detach (refused), stall (of the report descriptor),
                  write (fails); until "fault none": open (not permitted),
                  short N (the report descriptor ends after N bytes);
                  at once: flood N (N input reports)
  help            this text
)";
}

void Console::execute(std::string_view line)
{
    auto station = stations_.begin();
    if (line.size() > LineReader::kMaxLine) {
        station->say("not understood: line too long");
        return;
    }
    std::string_view words = trim(line);
    if (words.empty())
        return;
    if (const size_t colon = words.find(':'); colon != words.npos) {
        const std::optional<int> wanted = number(trim(words.substr(0, colon)));
        if (!wanted || *wanted < 1 || static_cast<size_t>(*wanted) > stations_.size()) {
            station->say("no such device");
            return;
        }
        std::advance(station, *wanted - 1);
        words = trim(words.substr(colon + 1));
    }
    if (!runCommand(*station, words))
        station->say("not understood: " + std::string(words) + " (try help)");
}

} // namespace sim
