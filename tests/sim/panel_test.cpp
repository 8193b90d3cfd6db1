#include "sim/device/panel.h"
#include "sim/device/profiles.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using sim::Button;
using sim::Bytes;

std::string text(const std::vector<sim::Panel::InputReport>& reports)
{
    std::string line;
    for (const auto& report : reports)
        line += report.what + " " + sim::toHex(report.report) + "; ";
    return line;
}

// Performs a word: a button, "hang" (the receiver up), "idle", or an output report.
std::string perform(sim::Panel& panel, const std::string& word)
{
    const std::map<std::string, Button> buttons = {{"hook", Button::kHook}, {"mute", Button::kMute},
        {"flash", Button::kFlash}, {"busy", Button::kBusy}};
    if (const auto button = buttons.find(word); button != buttons.end())
        return text(panel.press(button->second));
    if (word == "hang")
        return text(panel.setHook(sim::HookPosition::kOnHook));
    if (word == "idle")
        return sim::toHex(panel.idleReport()) + "; ";
    return panel.applyOutput(sim::fromHex(word).value()) + "; ";
}

TEST(Panel, DoesWhatTheDescriptorSays)
{
    for (const auto& [profile, words, expected] : {
             // Every report has the position of the hook switch, which follows the off-hook LED.
             std::tuple{"speakerphone", "mute hook busy hook 030100 idle hang",
                 "mute pressed 03 08 00; mute released 03 00 00; hook switch off 03 01 00; "
                 "line busy pressed 03 03 00; line busy released 03 01 00; "
                 "hook switch on 03 00 00; off-hook LED on; 03 01 00; hook switch on 03 00 00; "},
             {"speakerphone", "flash 030800 030800 04ffff 030100 030500 03",
                 "flash pressed 03 10 00; flash released 03 00 00; ring LED on; no change; "
                 "no change; off-hook LED on, ring LED off; mute LED on; "
                 "off-hook LED off, mute LED off; "},
             {"no-report-ids", "mute 000400 000000",
                 "mute pressed 04 00; mute released 00 00; ring LED on; ring LED off; "},
             {"led-per-report", "mute busy hook 1801 1701 1800",
                 "mute pressed 08 01; mute released 08 00; hook switch off 08 02; ring LED on; "
                 "off-hook LED on; ring LED off; "},
             {"no-out-endpoint", "busy", "line busy pressed 05 10; line busy released 05 00; "},
             {"webcam", "hook 0801 0803", "hook switch off 08 02; mute LED on; no change; "},
             {"no-telephony", "mute hook", ""},
         }) {
        sim::Panel panel(sim::findProfile(profile)->info.reportDescriptor);
        std::istringstream stream(words);
        std::string story;
        for (std::string word; stream >> word;)
            story += perform(panel, word);
        EXPECT_EQ(story, expected) << profile;
    }
}

TEST(Panel, FindsControlsHoweverTheyAreGiven)
{
    const std::string begin = "050b0905a101 1500 ";
    for (const auto& [items, words, expected] : {
             // In an array in which 0 stands for no button, and in one in which it is the hook.
             std::tuple{"250475089502 0900092009210997092f 8100", "mute hook mute hook",
                 "mute pressed 04 00; mute released 00 00; hook switch off 01 00; "
                 "mute pressed 01 04; mute released 01 00; hook switch on 00 00; "},
             {"250175029501 0920092f 8100 75069501 8101", "mute hook",
                 "mute pressed 01; mute released 02; hook switch off 00; "},
             // An array of LEDs: those that it does not contain are off.
             {"1501250375089502 0508 191729180920 9100", "000102 000200 000203 000000",
                 "off-hook LED on, ring LED on; off-hook LED off; hold LED on; "
                 "ring LED off, hold LED off; "},
             // Values that share a usage: the first one is the LED.
             {"250175019508 0508 0909 9102", "0001 00ff 00fe",
                 "mute LED on; no change; mute LED off; "},
             // Whole bytes, a long item, usages that give their page, saved globals.
             {"250175089502 0508 fe0210ffff 0b20000b00 a4050c9501b4 0b2f000b00 8102", "mute hook",
                 "mute pressed 00 01; mute released 00 00; hook switch off 01 00; "},
             // The first of two alternatives.
             {"250175019508 a901 0920 0921 a900 092f 8102", "flash hook mute",
                 "hook switch off 01; mute pressed 03; mute released 01; "},
         }) {
        sim::Panel panel(sim::fromHex(begin + items).value());
        std::istringstream stream(words);
        std::string story;
        for (std::string word; stream >> word;)
            story += perform(panel, word);
        EXPECT_EQ(story, expected) << items;
    }
}

TEST(Panel, SurvivesABrokenDescriptor)
{
    // One-bit telephony inputs without end, of every usage there is; then half an item.
    sim::Panel panel(
        sim::fromHex("070b00000075 0197ffffffff1b00000000 2bffffffff 8102 8102 07").value());
    EXPECT_EQ(panel.idleReport().size(), 65534U);
    EXPECT_EQ(panel.applyOutput({}), "no change");
    EXPECT_EQ(sim::Panel({}).idleReport(), Bytes{0});
}

} // namespace
