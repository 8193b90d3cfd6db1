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

TEST(DeviceLamps, BlinkUntilTheyAreQuiet)
{
    const sim::Panel::LampInfo ring{.name = "ring", .label = "Ring", .usage = {8, 0x18}};
    sim::DeviceLamps lamps({ring});
    const auto set = [&lamps](bool on, std::chrono::microseconds now) {
        (void)lamps.apply({{"ring", on}, {"unknown", on}}, now);
        return nameOf(*lamps.state("ring"));
    };
    EXPECT_EQ(set(true, 0ms), "on");
    EXPECT_EQ(set(true, 100ms), "on"); // no change
    EXPECT_EQ(set(false, 1500ms), "off");
    EXPECT_EQ(set(true, 3000ms), "blink");
    EXPECT_TRUE(lamps.anyBlinks());
    EXPECT_TRUE(lamps.update(4500ms).empty());
    EXPECT_EQ(lamps.update(4501ms).size(), 1U);
    EXPECT_EQ(nameOf(*lamps.state("ring")), "on");
    EXPECT_EQ(set(false, 4600ms), "off"); // after a longer gap
    EXPECT_FALSE(lamps.anyBlinks());
    EXPECT_FALSE(lamps.state("unknown"));
}

TEST(CommandHelp, FitsAnEightyColumnTerminal)
{
    std::istringstream help(sim::commandHelp());
    for (std::string line; std::getline(help, line);)
        EXPECT_LE(line.size(), 80U) << line;
}

} // namespace
