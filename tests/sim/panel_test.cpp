#include "sim/device/panel.h"
#include "sim/profile/profiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace {

using sim::Bytes;

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
            story += text(panel.applyOutput(*report));
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

// usb.ids with a few names.
const report::UsageNames kNames = report::UsageNames::parse(
    "HUT 0c  Consumer\n\t0e2  Mute\n\t0e9  Volume Increment\n\t0ea  +10 / -10 (dB)\n"
    "HUT 09  Button\nHUT 08  LED\n\t001  Num Lock\nHUT 0b  Telephony\n\t0b0  Phone Key 0\n");

TEST(Panel, NamesEveryButtonAndLedOnce)
{
    for (const auto& [items, buttons, lamps] : {
             // Consumer keys, one with the name of a telephony button, before those; a value that
             // is not on or off; padding; another page; two LEDs.
             std::tuple{"050c 09e2 09e9 09ea 9503 8102 950d 8101 09e0 2564 7508 9501 8102 2501 7501"
                        "050b 0920 092f 0931 9503 8102 0509 0902 9501 8102 0507 09e1 8102"
                        "0508 0918 0901 9502 9102 0918 0955 9102",
                 "mute-2 volume-increment 10-10-db hook mute 000b0031 button-2 ",
                 "ring num-lock ring-2 00080055 "},
             // A number after a name that another control has already.
             {"050c 09e9 09e9 09e9 9503 8102",
                 "volume-increment volume-increment-2 volume-increment-3 ", ""},
             // Of an array's range only usages with names, and not the one that stands for none.
             {"750895 02 26ff00 050c190029ff8100 050b09000901 8100",
                 "mute volume-increment 10-10-db 000b0001 ", ""},
         }) {
        std::string hex = std::string("050ba101 15002501 7501 9501 ") + items;
        std::erase(hex, ' ');
        sim::Panel panel(sim::fromHex(hex).value(), sim::HookSwitch::kFollowsLamp, kNames);
        std::string found;
        for (const auto& button : panel.buttons())
            found += button.name + ' ';
        EXPECT_EQ(found, buttons) << items;
        found.clear();
        for (const auto& lamp : panel.lamps())
            found += lamp.name + ' ';
        EXPECT_EQ(found, lamps) << items;
    }
}

TEST(Panel, KeepsButtonsDownUntilTheyAreReleased)
{
    sim::Panel panel(sim::findProfile("speakerphone")->info.controls().reportDescriptor);
    EXPECT_EQ(perform(panel, "+mute +busy mute +hook -busy -hook -none"),
        "mute pressed 03 08 00; busy pressed 03 0a 00; mute pressed 03 0a 00; "
        "mute released 03 02 00; hook off 03 03 00; busy released 03 01 00; hook on 03 00 00; ");
    EXPECT_FALSE(panel.press("none"));
    const auto pressed = [&](const char* name) {
        const auto buttons = panel.buttons();
        return std::ranges::find(buttons, name, &sim::Panel::ButtonState::name)->pressed;
    };
    EXPECT_EQ(perform(panel, "+flash"), "flash pressed 03 10 00; ");
    EXPECT_TRUE(pressed("flash") && !pressed("hook"));
    EXPECT_EQ(panel.hook(), sim::HookPosition::kOnHook);
    EXPECT_EQ(perform(panel, "030100"), "off-hook on; ");
    EXPECT_TRUE(pressed("hook"));
    EXPECT_EQ(panel.hook(), sim::HookPosition::kOffHook);
}

TEST(Panel, InAFullArrayTheLatestButtonReplacesTheFirst)
{
    // Hook Switch, Flash and Feature, of which one value fits.
    sim::Panel panel(*sim::fromHex("050b0905a1017508950115012503192029228100c0"));
    EXPECT_EQ(perform(panel, "+flash +hook -hook -flash"),
        "flash pressed 02; hook off 01; hook on 02; flash released 00; ");
}

TEST(Panel, WithoutPowerItIsDarkAndOnlyACradleKeepsItsPosition)
{
    const Bytes descriptor = sim::findProfile("speakerphone")->info.controls().reportDescriptor;
    for (const auto& [hookSwitch, state] : {
             std::pair{sim::HookSwitch::kFollowsLamp, Bytes{3, 0, 0}},
             {sim::HookSwitch::kStays, Bytes{3, 1, 0}},
             {sim::HookSwitch::kMomentary, Bytes{3, 0, 0}},
         }) {
        sim::Panel panel(descriptor, hookSwitch);
        perform(panel, "+hook +flash 030900");
        panel.losePower();
        EXPECT_EQ(panel.stateReport(), state);
        EXPECT_EQ(perform(panel, "030800"), "ring on; ");
    }
}

TEST(Panel, SaysWhatAReportChanges)
{
    sim::Panel panel(sim::findProfile("led-per-report")->info.controls().reportDescriptor);
    using Words = std::vector<std::string>;
    using report::ReportKind;
    for (const auto& [kind, report, words] : {
             std::tuple{ReportKind::kInput, Bytes{8, 2}, Words{"Hook Switch on"}},
             {ReportKind::kInput, Bytes{8, 2}, {}},
             {ReportKind::kOutput, Bytes{0x18, 1}, {"Ring on"}},
             {ReportKind::kOutput, Bytes{9, 1}, {"Mute on"}},
             {ReportKind::kInput, Bytes{8, 1}, {"Phone Mute on", "Hook Switch off"}},
             {ReportKind::kInput, Bytes{7}, {"unknown input report 7"}},
         })
        EXPECT_EQ(panel.meaning(kind, report), words) << sim::toHex(report);
}

TEST(Panel, SurvivesABrokenDescriptor)
{
    // One-bit telephony inputs without end, of every usage there is; then half an item.
    sim::Panel panel(sim::fromHex("070b00000075 0197ffffffff1a0000 2affff 8102 8102 07").value());
    EXPECT_EQ(panel.stateReport().size(), 65534U);
    EXPECT_EQ(panel.buttons().size(), sim::kMaxControls);
    EXPECT_EQ(text(panel.applyOutput({})), "no change; ");
    EXPECT_EQ(sim::Panel({}).stateReport(), Bytes{0});
}

} // namespace
