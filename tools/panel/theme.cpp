#include "tools/panel/theme.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>

namespace panel {
namespace {

struct Colours {
    QRgb window;
    QRgb surface;
    QRgb text;
    QRgb muted;
    QRgb line;
    QRgb edge;
    QRgb accent;
    QRgb accentText;
    QRgb lamp;
    QRgb lampGlow;
    QRgb selection;
};

constexpr Colours kLightColours{0xfff4f5f6, 0xffffffff, 0xff1b1f24, 0xff59626c, 0xffdde0e4,
    0xff858e98, 0xff0a63c2, 0xffffffff, 0xffcc6a00, 0xfffdeccf, 0xffd6e6f9};
constexpr Colours kDarkColours{0xff17191c, 0xff1f2226, 0xffe6e8eb, 0xffa6afb9, 0xff33383e,
    0xff737c87, 0xff6cb2ff, 0xff0b1724, 0xffffb84d, 0xff3a2f1c, 0xff1f3f63};

const Colours& coloursOf(bool dark)
{
    return dark ? kDarkColours : kLightColours;
}

} // namespace

Theme::Theme(Look look, QObject* parent)
    : QObject(parent)
    , look_(look)
{
    connect(qGuiApp, &QGuiApplication::paletteChanged, this, &Theme::changed);
}

bool Theme::isDark() const
{
    if (look_ != Look::kSystem)
        return look_ == Look::kDark;
    const QPalette system = QGuiApplication::palette();
    return system.color(QPalette::Window).lightness()
        < system.color(QPalette::WindowText).lightness();
}

QPalette Theme::palette() const
{
    QPalette palette(text(), window());
    palette.setColor(QPalette::Base, surface());
    palette.setColor(QPalette::Text, text());
    palette.setColor(QPalette::Button, surface());
    palette.setColor(QPalette::ButtonText, text());
    palette.setColor(QPalette::ToolTipBase, text());
    palette.setColor(QPalette::ToolTipText, window());
    palette.setColor(QPalette::PlaceholderText, muted());
    palette.setColor(QPalette::Highlight, accent());
    palette.setColor(QPalette::HighlightedText, accentText());
    palette.setColor(QPalette::Mid, edge());
    palette.setColor(QPalette::Dark, muted());
    palette.setColor(QPalette::Midlight, line());
    palette.setColor(QPalette::Light, surface());
    return palette;
}

QColor Theme::window() const
{
    return coloursOf(isDark()).window;
}

QColor Theme::surface() const
{
    return coloursOf(isDark()).surface;
}

QColor Theme::text() const
{
    return coloursOf(isDark()).text;
}

QColor Theme::muted() const
{
    return coloursOf(isDark()).muted;
}

QColor Theme::line() const
{
    return coloursOf(isDark()).line;
}

QColor Theme::edge() const
{
    return coloursOf(isDark()).edge;
}

QColor Theme::accent() const
{
    return coloursOf(isDark()).accent;
}

QColor Theme::accentText() const
{
    return coloursOf(isDark()).accentText;
}

QColor Theme::lamp() const
{
    return coloursOf(isDark()).lamp;
}

QColor Theme::lampGlow() const
{
    return coloursOf(isDark()).lampGlow;
}

QColor Theme::selection() const
{
    return coloursOf(isDark()).selection;
}

QString Theme::mono() const
{
    return QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
}

int Theme::fontSize() const
{
    return QFontInfo(QGuiApplication::font()).pixelSize();
}

int Theme::smallSize() const
{
    return fontSize() * 11 / 12;
}

int Theme::titleSize() const
{
    return fontSize() * 4 / 3;
}

int Theme::gap() const
{
    return 8;
}

} // namespace panel
