#include "sim/bench/bench.h"
#include "sim/bench/command.h"
#include "sim/bench/command_words.h"

#include <json/value.h>

namespace sim {
namespace {

constexpr std::chrono::seconds kDefaultWait{5};

CommandOutcome press(const CommandCall& call)
{
    return call.device.press(call.words[0], call.hold ? Press::kHold : Press::kPush);
}

CommandOutcome release(const CommandCall& call)
{
    return call.device.release(call.words[0]);
}

CommandOutcome hook(const CommandCall& call)
{
    if (call.words.empty())
        return call.device.press("hook", Press::kPush);
    if (call.words[0] != "on" && call.words[0] != "off")
        return CommandResult{kNotUnderstood, "expected hook on or hook off"};
    return call.words[0] == "off" ? call.device.press("hook", Press::kHold)
                                  : call.device.release("hook");
}

CommandOutcome mute(const CommandCall& call)
{
    return call.device.press("mute", Press::kPush);
}

CommandOutcome flash(const CommandCall& call)
{
    return call.device.press("flash", Press::kPush);
}

CommandOutcome busy(const CommandCall& call)
{
    return call.device.press("busy", Press::kPush);
}

CommandOutcome raw(const CommandCall& call)
{
    std::string text;
    for (const std::string_view word : call.words)
        text += std::string(word) + ' ';
    const auto report = fromHex(text);
    if (!report || report->empty())
        return CommandResult{kNotUnderstood, "raw takes bytes in hexadecimal, such as 03 01 00"};
    return call.device.sendRaw(*report);
}

CommandOutcome lamps(const CommandCall& call)
{
    constexpr size_t kColumn = 16;
    const DeviceLamps& list = call.device.lamps();
    if (call.json) {
        Json::Value object;
        object["lamps"] = list.json();
        call.answers.send(object);
        return CommandResult{};
    }
    for (const std::string_view lamp : list.names()) {
        std::string line(lamp);
        line.resize(std::max(line.size() + 1, kColumn), ' ');
        call.answers.text(line + nameOf(*list.state(lamp)));
    }
    if (list.names().empty())
        call.answers.text("the device has no lamps");
    return CommandResult{};
}

CommandOutcome devices(const CommandCall& call)
{
    if (call.json) {
        call.answers.send(call.bench.devicesJson());
        return CommandResult{};
    }
    for (BenchDevice& device : call.bench.devices())
        call.answers.text(device.summary());
    return CommandResult{};
}

CommandOutcome events(const CommandCall& call)
{
    Json::Value start = call.bench.devicesJson();
    start["event"] = "start";
    call.answers.send(start);
    return CommandStream{};
}

CommandOutcome wait(const CommandCall& call)
{
    Bench& bench = call.bench;
    BenchDevice& device = call.device;
    const std::string wanted(call.words[0]);
    const auto within = call.within.value_or(kDefaultWait);
    if (wanted == "idle")
        return CommandWait{[&bench, &device] { return bench.checkIdle(device); }, within};
    if (wanted != "open" && wanted != "closed")
        return CommandResult{kNotUnderstood, "expected wait open, wait closed or wait idle"};
    const auto check = [&device, wanted]() -> CommandResult {
        if (device.isOpen() == (wanted == "open"))
            return {};
        return {kNotMet,
            std::string("the device is ") + (device.isOpen() ? "open" : "closed") + ", not "
                + wanted};
    };
    return CommandWait{check, within};
}

CommandOutcome expect(const CommandCall& call)
{
    const DeviceLamps& list = call.device.lamps();
    const std::string lamp(call.words[0]);
    const std::string wanted(call.words[1]);
    if (!list.state(lamp))
        return CommandResult{
            kNotUnderstood, "the device has no lamp " + lamp + suggestion(lamp, list.names())};
    if (wanted != "on" && wanted != "off" && wanted != "blink")
        return CommandResult{kNotUnderstood, "expected on, off or blink after the lamp's name"};
    const auto check = [&list, lamp, wanted]() -> CommandResult {
        const std::string state = nameOf(*list.state(lamp));
        if (state == wanted)
            return {};
        const auto words
            = [](const std::string& name) { return name == "blink" ? "blinking" : name; };
        return {kNotMet, lamp + " is " + words(state) + ", not " + words(wanted)};
    };
    return CommandWait{check, call.within.value_or(std::chrono::milliseconds(0))};
}

CommandOutcome unplug(const CommandCall& call)
{
    return call.device.unplug();
}

CommandOutcome replug(const CommandCall& call)
{
    return call.device.replug();
}

CommandOutcome fault(const CommandCall& call)
{
    return call.device.setFault(call.words[0], call.words.size() > 1 ? call.words[1] : "");
}

CommandOutcome quit(const CommandCall& call)
{
    call.bench.quit();
    return CommandResult{};
}

// From our preload library in the program. The device does not notice a refused open.
CommandOutcome openRefused(const CommandCall& call)
{
    for (BenchDevice& device : call.bench.devices())
        if (device.hasNode(call.words[0]))
            device.reportRefusedOpen();
    return CommandResult{};
}

CommandOutcome help(const CommandCall& call)
{
    std::string text = commandHelp();
    text.pop_back(); // the answer is a line
    call.answers.text(text);
    return CommandResult{};
}

constexpr Command kCommands[] = {
    {"press", "BUTTON [--hold]",
        "push the button and let it go; the hook switch\n"
        "moves to its other position; with --hold the button\n"
        "stays down, and the hook switch is off",
        press},
    {"release", "BUTTON", "let go of a button that is down; the hook is on", release},
    {"hook", "[on|off]", "move the hook switch", hook},
    {"mute", "", "the same as press mute", mute},
    {"flash", "", "the same as press flash", flash},
    {"busy", "", "the same as press busy", busy},
    {"raw", "HEX", "send an input report, as on the wire", raw},
    {"lamps", "[--json]", "list the lamps: on, off or blink", lamps},
    {"devices", "[--json]", "list the devices; with --json their controls, too", devices},
    {"events", "", "print what happens, in JSON, until Ctrl-C", events},
    {"wait", "open|closed|idle [--within T]",
        "wait until a program reads from the device; until\n"
        "none does; until every report has been read and\n"
        "none was sent for 200 ms. T is 500ms or 2s, default 5s",
        wait},
    {"expect", "LAMP on|off|blink [--within T]", "fail unless the lamp is so, now or within T",
        expect},
    {"unplug", "", "unplug the device", unplug},
    {"replug", "", "plug it in again, unplug it first if necessary", replug},
    {"fault", "NAME [N|off]",
        "from now on, the next N times, or no longer:\n"
        "open (not permitted), claim, detach, write (refused),\n"
        "stall (of the report descriptor), strings (no names);\n"
        "short N (the report descriptor ends after N bytes);\n"
        "at once: flood N (N input reports, at most 65536);\n"
        "none switches all off",
        fault},
    {"quit", "", "end the program and the bench", quit},
    {"help", "", "this text", help},
    {"open-refused", "NODE", "", openRefused},
};

} // namespace

std::span<const Command> commands()
{
    return kCommands;
}

} // namespace sim
