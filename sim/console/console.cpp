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

// Removes the first word from `text` and returns it.
std::string_view takeWord(std::string_view& text)
{
    const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
    text = trim(text.substr(word.size()));
    return word;
}

// A number from 0; no value for any other text.
std::optional<int> number(std::string_view text)
{
    int value = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || value < 0)
        return std::nullopt;
    return value;
}

// These return false if the words are not valid.

bool hook(ConsoleDevice& device, std::string_view position)
{
    if (position.empty())
        device.press("hook");
    else if (position == "off")
        device.setHook(HookPosition::kOffHook);
    else if (position == "on")
        device.setHook(HookPosition::kOnHook);
    else
        return false;
    return true;
}

bool raw(ConsoleDevice& device, std::string_view text)
{
    const auto report = fromHex(text);
    if (!report || report->empty())
        return false;
    device.sendRaw(*report);
    return true;
}

bool fault(ConsoleDevice& device, std::string_view words)
{
    const std::string_view name = takeWord(words);
    const std::optional<int> count = number(words);
    return (count || words.empty()) && device.setFault(name, count);
}

template <const char* button>
bool press(ConsoleDevice& device, std::string_view)
{
    device.press(button);
    return true;
}

constexpr char kMute[] = "mute";
constexpr char kFlash[] = "flash";
constexpr char kBusy[] = "busy";

template <void (ConsoleDevice::*action)()>
bool perform(ConsoleDevice& device, std::string_view)
{
    (device.*action)();
    return true;
}

bool help(ConsoleDevice&, std::string_view)
{
    fputs(commandHelp().data(), stdout);
    fflush(stdout);
    return true;
}

struct Command {
    std::string_view name;
    bool (*run)(ConsoleDevice& device, std::string_view words);
};

constexpr Command kCommands[] = {
    {"hook", hook},
    {"mute", press<kMute>},
    {"flash", press<kFlash>},
    {"busy", press<kBusy>},
    {"raw", raw},
    {"unplug", perform<&ConsoleDevice::unplug>},
    {"replug", perform<&ConsoleDevice::replug>},
    {"fault", fault},
    {"help", help},
};

bool runCommand(ConsoleDevice& device, std::string_view words)
{
    const std::string_view name = takeWord(words);
    for (const Command& command : kCommands) {
        if (command.name == name)
            return command.run(device, words);
    }
    return false;
}

} // namespace

std::string_view commandHelp()
{
    return R"(Commands, a line each; "2: mute" is for the second device:
  hook [off|on]   move the hook switch to that position, or to the other one
  mute            press and release the mute button; likewise flash and busy
  raw HEX         send an input report, as on the wire
  unplug          unplug the device; replug unplugs it if necessary and plugs
                  it in again
  fault NAME [N]  from now on, or the next N times:
                  claim, detach (refused), stall (of the report descriptor),
                  write (refused); until "fault none": open (not permitted),
                  short N (the report descriptor ends after N bytes);
                  at once: flood N (N input reports, at most 65536)
  help            this text
)";
}

void Console::execute(std::string_view line)
{
    auto device = devices_.begin();
    if (line.size() > LineReader::kMaxLine) {
        device->print("not understood: line too long");
        return;
    }
    std::string_view words = trim(line);
    if (words.empty())
        return;
    if (const size_t colon = words.find(':'); colon != words.npos) {
        const std::optional<int> wanted = number(trim(words.substr(0, colon)));
        if (!wanted || *wanted < 1 || static_cast<size_t>(*wanted) > devices_.size()) {
            device->print("no such device");
            return;
        }
        std::advance(device, *wanted - 1);
        words = trim(words.substr(colon + 1));
    }
    if (!runCommand(*device, words))
        device->print("not understood: " + std::string(words) + " (try help)");
}

} // namespace sim
