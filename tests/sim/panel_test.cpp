#include "sim/device/panel.h"
#include "sim/device/profiles.h"

#include <gtest/gtest.h>

namespace {

using sim::Button;
using sim::Bytes;

// "mute pressed 03 08 00, mute released 03 00 00"
std::string text(const std::vector<sim::Panel::InputReport>& reports)
{
    std::string line;
    for (const auto& report : reports)
        line += (line.empty() ? "" : ", ") + report.what + " " + sim::toHex(report.report);
    return line;
}

sim::Panel panelOf(std::string_view profile)
{
    return sim::Panel(sim::findProfile(profile)->info.reportDescriptor);
}

TEST(Panel, ButtonsSendWhatTheDescriptorSays)
{
    const struct {
        const char* profile;
        Button button;
        const char* expected;
    } cases[] = {
        {"speakerphone", Button::kMute, "mute pressed 03 08 00, mute released 03 00 00"},
        {"speakerphone", Button::kFlash, "flash pressed 03 10 00, flash released 03 00 00"},
        {"speakerphone", Button::kBusy, "line busy pressed 03 02 00, line busy released 03 00 00"},
        {"no-report-ids", Button::kMute, "mute pressed 04 00, mute released 00 00"},
        {"led-per-report", Button::kMute, "mute pressed 08 01, mute released 08 00"},
        {"led-per-report", Button::kHook, "hook switch off 08 02"},
        {"led-per-report", Button::kBusy, ""},
        {"no-out-endpoint", Button::kBusy, "line busy pressed 05 10, line busy released 05 00"},
        {"webcam", Button::kHook, "hook switch off 08 02"},
        {"no-telephony", Button::kMute, ""},
    };
    for (const auto& testCase : cases)
        EXPECT_EQ(text(panelOf(testCase.profile).press(testCase.button)), testCase.expected)
            << testCase.profile;
}

TEST(Panel, EveryReportHoldsThePositionOfTheHookSwitch)
{
    sim::Panel panel = panelOf("speakerphone");
    EXPECT_EQ(text(panel.press(Button::kHook)), "hook switch off 03 01 00");
    EXPECT_EQ(text(panel.press(Button::kBusy)),
        "line busy pressed 03 03 00, line busy released 03 01 00");
    EXPECT_EQ(text(panel.press(Button::kHook)), "hook switch on 03 00 00");
    panel.applyOutput({3, 1, 0}); // answered on the host
    EXPECT_EQ(panel.idleReport(), (Bytes{3, 1, 0}));
    EXPECT_EQ(text(panel.setHook(sim::HookPosition::kOnHook)), "hook switch on 03 00 00");
}

TEST(Panel, LedsAreInTheReportOfTheDescriptor)
{
    const struct {
        const char* profile;
        std::vector<std::pair<Bytes, const char*>> reports;
    } cases[] = {
        {"speakerphone",
            {{{3, 8, 0}, "ring LED on"}, {{3, 8, 0}, "no change"}, {{4, 0xff, 0xff}, "no change"},
                {{3, 1, 0}, "off-hook LED on, ring LED off"}, {{3, 5, 0}, "mute LED on"},
                {{3}, "off-hook LED off, mute LED off"}, {{}, "no change"}}},
        {"no-report-ids", {{{0, 4, 0}, "ring LED on"}, {{0, 0, 0}, "ring LED off"}}},
        {"led-per-report",
            {{{0x18, 1}, "ring LED on"}, {{0x17, 1}, "off-hook LED on"},
                {{0x18, 0}, "ring LED off"}}},
        {"webcam", {{{8, 1}, "mute LED on"}, {{8, 3}, "no change"}}},
    };
    for (const auto& testCase : cases) {
        sim::Panel panel = panelOf(testCase.profile);
        for (const auto& [report, expected] : testCase.reports)
            EXPECT_EQ(panel.applyOutput(report), expected)
                << testCase.profile << ' ' << sim::toHex(report);
    }
}

TEST(Panel, SurvivesABrokenDescriptor)
{
    const Bytes hostile[] = {{}, {0x05}, {0x07, 1, 2}, {0xfe, 0xff, 0xff},
        // one-bit telephony inputs without end, of every usage there is
        {0x07, 0x0b, 0, 0, 0, 0x75, 1, 0x97, 0xff, 0xff, 0xff, 0xff, 0x1b, 0, 0, 0, 0, 0x2b, 0xff,
            0xff, 0xff, 0xff, 0x81, 2, 0x81, 2, 0x81, 2}};
    for (const Bytes& descriptor : hostile) {
        sim::Panel panel(descriptor);
        EXPECT_LE(panel.idleReport().size(), 65536U);
        EXPECT_EQ(panel.applyOutput(Bytes(64, 0xff)), "no change");
        panel.press(Button::kHook);
    }
}

} // namespace
