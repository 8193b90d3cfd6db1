#include "sim/bench/bench_event.h"
#include "sim/bench/command.h"
#include "sim/bench/command_words.h"
#include "sim/bench/device_lamps.h"
#include "sim/bench/json_line.h"

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;
using Kind = sim::BenchEvent::Kind;

TEST(CommandWords, TimesAndNumbersAreReadOrRefused)
{
    using Milliseconds = std::optional<std::chrono::milliseconds>;
    for (const auto& [text, expected] : {
             std::pair<const char*, Milliseconds>{"500ms", 500ms},
             {"2s", 2s},
             {"1.5s", 1500ms},
             {"0s", 0ms},
             {"86400s", 86'400s},
             {"86401s", std::nullopt},
             {"1e9s", std::nullopt},
             {"nans", std::nullopt},
             {"infs", std::nullopt},
             {"-1s", std::nullopt},
             {"5", std::nullopt},
             {"s", std::nullopt},
             {"ms", std::nullopt},
             {"2 s", std::nullopt},
         })
        EXPECT_EQ(sim::parseDuration(text), expected) << text;
    for (const auto& [text, expected] : {
             std::pair<const char*, std::optional<int>>{"0", 0},
             {"999999999", 999'999'999},
             {"1000000000", std::nullopt},
             {"-1", std::nullopt},
             {"+1", std::nullopt},
             {"", std::nullopt},
             {"1x", std::nullopt},
         })
        EXPECT_EQ(sim::parseNumber(text), expected) << text;
    EXPECT_EQ(sim::durationText(200ms), "200 ms");
    EXPECT_EQ(sim::durationText(1500ms), "1.5 s");
    EXPECT_EQ(sim::durationText(2s), "2 s");
}

TEST(BenchEvent, IsALineForPeopleAndAnObjectForPrograms)
{
    const auto input = [](sim::Delivery delivery) {
        sim::BenchEvent event{.device = 2, .kind = Kind::kInput, .time = 1'234'567us};
        event.report = {3, 1, 0};
        event.meaning = {"Hook Switch on"};
        event.cause = "hook off";
        event.delivery = delivery;
        return event;
    };
    sim::BenchEvent output{.device = 1, .kind = Kind::kOutput, .time = 512'345us};
    output.report = {3, 8, 0};
    output.meaning = {"Ring on"};
    output.changes = {{"ring", true}, {"mute", false}};
    sim::BenchEvent other{.device = 1, .kind = Kind::kOutput, .interface = 2, .report = {1}};
    sim::BenchEvent note{.device = 1, .kind = Kind::kNote, .name = "ü\x01"};
    for (const auto& [event, text, json] :
        {
            std::tuple{input(sim::Delivery::kQueued), "   1.234567  2:  in   03 01 00     hook off",
                R"({"cause":"hook off","device":2,"event":"input","meaning":["Hook Switch on"],)"
                R"("read":true,"report":"030100","time":1.234567})"},
            {input(sim::Delivery::kQueueFull),
                "   1.234567  2:  in   03 01 00     hook off  (lost: the program reads too slowly)",
                R"({"cause":"hook off","device":2,"event":"input","meaning":["Hook Switch on"],)"
                R"("read":false,"report":"030100","time":1.234567})"},
            {output, "   0.512345  1:  out  03 08 00     ring on, mute off",
                R"({"device":1,"event":"output","lamps":{"mute":"off","ring":"on"},)"
                R"("meaning":["Ring on"],"report":"030800","time":0.512345})"},
            {other, "   0.000000  1:  out  01           interface 2",
                R"({"device":1,"event":"output","interface":2,"lamps":{},"meaning":[],)"
                R"("report":"01","time":0.0})"},
            {note, "   0.000000  1:  --   ü\x01",
                R"({"device":1,"event":"note","text":"\u00fc\u0001","time":0.0})"},
        }) {
        EXPECT_EQ(sim::toText(event, sim::Numbered::kYes), text);
        EXPECT_EQ(sim::jsonLine(sim::toJson(event)), json);
    }
}

// Switches the ring lamp on, off and so on at these times, in milliseconds.
std::string ringAfter(const std::vector<int>& changes, std::optional<int> now = {})
{
    sim::DeviceLamps lamps({{.name = "ring", .label = "Ring", .usage = {8, 0x18}}});
    bool on = false;
    for (const int at : changes) {
        on = !on;
        (void)lamps.apply({{"ring", on}, {"unknown", on}}, std::chrono::milliseconds(at));
    }
    (void)lamps.update(std::chrono::milliseconds(now.value_or(changes.back())));
    const std::string state = nameOf(lamps.state("ring").value());
    EXPECT_EQ(lamps.anyBlinks(), state == "blink");
    return state;
}

TEST(DeviceLamps, BlinkWhileTheyFlashRegularly)
{
    const struct {
        const char* what;
        std::vector<int> changes;
        std::optional<int> now;
        const char* state;
    } cases[] = {
        {"answering a call", {0, 1, 2}, {}, "on"},
        {"rejecting a call", {0, 500, 501, 502}, {}, "off"},
        {"two calls", {240, 460, 1090}, {}, "on"},
        {"two flashes", {0, 100, 200, 300}, {}, "blink"},
        {"short flashes", {0, 40, 1000, 1040}, {}, "blink"},
        {"a flash and a half", {0, 500, 1000}, {}, "on"},
        {"phases are long", {0, 1500, 3000, 4500}, {}, "blink"},
        {"phases are too long", {0, 1501, 3000, 4500}, {}, "off"},
        {"the second flash is twice as long", {0, 100, 200, 400}, {}, "blink"},
        {"it is longer", {0, 100, 200, 401}, {}, "off"},
        {"it is half as long", {0, 200, 300, 400}, {}, "blink"},
        {"it is shorter", {0, 200, 300, 399}, {}, "off"},
        {"the phase that runs is twice as long as the one before", {0, 100, 200, 300}, 500,
            "blink"},
        {"it is longer", {0, 100, 200, 300}, 501, "off"},
        {"it is longer, on", {0, 100, 200, 300, 400}, 601, "on"},
        {"it ends, and is not regular", {0, 100, 200, 300, 700}, {}, "on"},
        {"a flicker does not end the blinking", {0, 500, 1000, 1500, 1510, 1511, 2000}, {},
            "blink"},
        {"during the flicker", {0, 500, 1000, 1500, 2000, 2010}, {}, "blink"},
        {"nothing but flicker", {0, 39, 78, 117, 156, 195}, {}, "off"},
    };
    for (const auto& test : cases)
        EXPECT_EQ(ringAfter(test.changes, test.now), test.state) << test.what;
}

TEST(CommandHelp, FitsAnEightyColumnTerminal)
{
    std::istringstream help(sim::commandHelp());
    for (std::string line; std::getline(help, line);)
        EXPECT_LE(line.size(), 80U) << line;
}

} // namespace
