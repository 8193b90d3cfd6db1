// The command line, and the colours that it chooses.
#include "tools/panel/command_line.h"
#include "tools/panel/theme.h"

#include <QGuiApplication>
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using panel::EarlyExit;
using panel::Look;
using panel::Options;

#define TRY "; try kelprobe-panel --help"

struct Mistake {
    std::vector<const char*> words;
    const char* text;
};

const Mistake kMistakes[] = {
    {{"--sokcet", "x"}, "kelprobe-panel: unknown option --sokcet; did you mean --socket?"},
    {{"--qwertz"}, "kelprobe-panel: unknown option --qwertz" TRY},
    {{"speakerphone"}, "kelprobe-panel: unexpected argument speakerphone" TRY},
    {{"--socket"}, "kelprobe-panel: --socket: 1 required PATH missing" TRY},
    {{"--device", "0"},
        "kelprobe-panel: --device: expected the number of a device, from 1, not 0" TRY},
    {{"--device", "two"},
        "kelprobe-panel: --device: expected the number of a device, from 1, not two" TRY},
    {{"--device", "99999999999"},
        "kelprobe-panel: --device: expected the number of a device, from 1, not 99999999999" TRY},
    {{"--theme", "blue"}, "kelprobe-panel: --theme: expected light or dark, not blue" TRY},
    {{"--socket", ""}, "kelprobe-panel: --socket: expected a path" TRY},
    {{},
        "kelprobe-panel: KELPROBE_SIM is not set, so there is no bench; start it with "
        "kelprobe-sim run PROFILE -- kelprobe-panel"},
};

auto parse(std::vector<const char*> words, const char* socket)
{
    words.insert(words.begin(), "kelprobe-panel");
    return panel::parseCommandLine(static_cast<int>(words.size()), words.data(), socket);
}

TEST(PanelCommandLine, NamesMistakesAndTheRemedy)
{
    for (const auto& [words, text] : kMistakes) {
        const auto result = parse(words, nullptr);
        const auto* const exit = std::get_if<EarlyExit>(&result);
        ASSERT_TRUE(exit) << text;
        EXPECT_EQ(exit->text, text);
        EXPECT_EQ(exit->status, panel::kWrongUse);
    }
}

TEST(PanelCommandLine, TakesTheSocketFromTheEnvironment)
{
    const auto result = parse({"--theme", "dark", "--device", "2"}, "/tmp/x/control");
    const auto& options = std::get<Options>(result);
    EXPECT_EQ(options.socket, "/tmp/x/control");
    EXPECT_EQ(options.device, 2);
    EXPECT_EQ(options.look, Look::kDark);
    const auto other = parse({"--socket", "mine"}, "/tmp/x/control");
    EXPECT_EQ(std::get<Options>(other).socket, "mine");
    EXPECT_EQ(std::get<Options>(other).look, Look::kSystem);
    for (const char* const option : {"--help", "-h", "--version"}) {
        const auto asked = parse({option}, nullptr);
        EXPECT_EQ(std::get<EarlyExit>(asked).status, panel::kFine) << option;
        EXPECT_FALSE(std::get<EarlyExit>(asked).text.ends_with('\n'));
    }
}

double luminance(const QColor& colour)
{
    const auto linear
        = [](double c) { return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
        + 0.0722 * linear(colour.blueF());
}

// From 1 to 21, as the Web Content Accessibility Guidelines define it.
double contrast(const QColor& a, const QColor& b)
{
    const auto [dark, light] = std::minmax({luminance(a), luminance(b)});
    return (light + 0.05) / (dark + 0.05);
}

TEST(PanelTheme, HasContrastInBothLooks)
{
    for (const Look look : {Look::kLight, Look::kDark}) {
        const panel::Theme theme(look);
        const QColor below[] = {theme.window(), theme.surface(), theme.selection()};
        for (const QColor& colour : below) {
            EXPECT_GE(contrast(theme.text(), colour), 7) << theme.isDark();
            EXPECT_GE(contrast(theme.muted(), colour), 4.5) << theme.isDark();
        }
        EXPECT_GE(contrast(theme.accentText(), theme.accent()), 4.5) << theme.isDark();
        EXPECT_GE(contrast(theme.text(), theme.lampGlow()), 7) << theme.isDark();
        EXPECT_GE(contrast(theme.lamp(), theme.lampGlow()), 3) << theme.isDark();
        for (const QColor& colour : {theme.window(), theme.surface()}) {
            EXPECT_GE(contrast(theme.accent(), colour), 3) << theme.isDark();
            EXPECT_GE(contrast(theme.lamp(), colour), 3) << theme.isDark();
            EXPECT_GE(contrast(theme.edge(), colour), 3) << theme.isDark();
        }
    }
}

TEST(PanelTheme, FollowsTheSystemUnlessALookIsChosen)
{
    const panel::Theme system(Look::kSystem);
    const panel::Theme light(Look::kLight);
    const QPalette before = QGuiApplication::palette();
    int changes = 0;
    QObject::connect(&system, &panel::Theme::changed, [&] { ++changes; });
    QGuiApplication::setPalette(QPalette(Qt::white, Qt::black));
    EXPECT_TRUE(system.isDark());
    EXPECT_FALSE(light.isDark());
    QGuiApplication::setPalette(QPalette(Qt::black, Qt::white));
    EXPECT_FALSE(system.isDark());
    EXPECT_EQ(changes, 2);
    QGuiApplication::setPalette(before);
}

} // namespace
