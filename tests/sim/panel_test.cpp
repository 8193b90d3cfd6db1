#include "sim/device/panel.h"
#include "sim/profile/profiles.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using sim::Bytes;
using Seconds = std::chrono::duration<double>;

std::string text(const std::optional<sim::Panel::InputReports>& reports)
{
    std::string line;
    for (const auto& report : reports.value_or(sim::Panel::InputReports{}))
        line += report.cause + " " + sim::toHex(report.report) + "; ";
    return line;
}

std::string text(const std::vector<sim::LampChange>& changes)
{
    std::string line;
    for (const auto& [lamp, on] : changes)
        line += lamp + (on ? " on; " : " off; ");
    return line.empty() ? "no change; " : line;
}

// Performs each word: a button to push, one to press ("+") or release ("-"), "hang" (hook on),
// "state" (the state report), or an output report.
std::string perform(sim::Panel& panel, const std::string& words)
{
    std::istringstream stream(words);
    std::string story;
    for (std::string word; stream >> word;) {
        if (word == "hang")
            story += text(panel.setHook(sim::HookPosition::kOnHook));
        else if (word == "state")
            story += sim::toHex(panel.stateReport()) + "; ";
        else if (word.starts_with('+'))
            story += text(panel.press(word.substr(1)));
        else if (word.starts_with('-'))
            story += text(panel.release(word.substr(1)));
        else if (const auto report = sim::fromHex(word))
            story += text(panel.applyOutput(*report, {}));
        else
            story += text(panel.push(word));
    }
    return story;
}

TEST(Panel, DoesWhatTheDescriptorSays)
{
    for (const auto& [profile, words, expected] : {
             // Every report has the position of the hook switch, which follows the off-hook LED.
             std::tuple{"speakerphone", "mute hook busy hook 030100 state hang",
                 "mute pressed 03 08 00; mute released 03 00 00; hook off 03 01 00; "
                 "busy pressed 03 03 00; busy released 03 01 00; "
                 "hook on 03 00 00; off-hook on; 03 01 00; hook on 03 00 00; "},
             {"speakerphone", "flash 030800 030800 04ffff 030100 030500 03",
                 "flash pressed 03 10 00; flash released 03 00 00; ring on; no change; "
                 "no change; off-hook on; ring off; mute on; "
                 "off-hook off; mute off; "},
             {"no-report-ids", "mute 000400 000000",
                 "mute pressed 04 00; mute released 00 00; ring on; ring off; "},
             {"led-per-report", "mute busy hook 1801 1701 1800",
                 "mute pressed 08 01; mute released 08 00; hook off 08 02; ring on; "
                 "off-hook on; ring off; "},
             {"no-out-endpoint", "busy", "busy pressed 05 10; busy released 05 00; "},
             {"webcam", "hook 0801 0803", "hook off 08 02; mute on; no change; "},
             {"no-telephony", "mute hook", ""},
         }) {
        sim::Panel panel(sim::findProfile(profile)->info.controls().reportDescriptor);
        EXPECT_EQ(perform(panel, words), expected) << profile;
    }
}

TEST(Panel, FindsControlsHoweverTheyAreGiven)
{
    const std::string begin = "050b0905a101 1500 ";
    for (const auto& [items, words, expected] : {
             // In an array in which 0 stands for no button, and in one in which it is the hook.
             std::tuple{"250475089502 0900092009210997092f 8100", "mute hook mute hook",
                 "mute pressed 04 00; mute released 00 00; hook off 01 00; "
                 "mute pressed 01 04; mute released 01 00; hook on 00 00; "},
             {"250175029501 0920092f 8100 75069501 8101", "mute hook",
                 "mute pressed 01; mute released 02; hook off 00; "},
             // An array of LEDs: those that it does not contain are off.
             {"1501250375089502 0508 191729180920 9100", "000102 000200 000203 000000",
                 "off-hook on; ring on; off-hook off; hold on; "
                 "ring off; hold off; "},
             // Values that share a usage: the first one is the LED.
             {"250175019508 0508 0909 9102", "0001 00ff 00fe", "mute on; no change; mute off; "},
             // Whole bytes, a long item, usages that give their page, saved globals.
             {"250175089502 0508 fe0210ffff 0b20000b00 a4050c9501b4 0b2f000b00 8102", "mute hook",
                 "mute pressed 00 01; mute released 00 00; hook off 01 00; "},
             // The first of two alternatives.
             {"250175019508 a901 0920 0921 a900 092f 8102", "flash hook mute",
                 "hook off 01; mute pressed 03; mute released 01; "},
         }) {
        sim::Panel panel(sim::fromHex(begin + items).value());
        EXPECT_EQ(perform(panel, words), expected) << items;
    }
}

TEST(Panel, SurvivesABrokenDescriptor)
{
    // One-bit telephony inputs without end, of every usage there is; then half an item.
    sim::Panel panel(
        sim::fromHex("070b00000075 0197ffffffff1b00000000 2bffffffff 8102 8102 07").value());
    EXPECT_EQ(panel.stateReport().size(), 65534U);
    EXPECT_EQ(text(panel.applyOutput({}, {})), "no change; ");
    EXPECT_EQ(sim::Panel({}).stateReport(), Bytes{0});
}

} // namespace
