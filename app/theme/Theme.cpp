#include "app/theme/Theme.h"

#include <QApplication>
#include <QToolTip>
#include <QWidget>

using namespace Qt::StringLiterals;

const Theme& darkTheme()
{
    static const Theme theme{
        .bg = 0x0C0D0F,
        .panel = 0x15161A,
        .card = 0x1C1E22,
        .control = 0x25272C,
        .hover = 0x2E3137,
        .seg = 0x3A3D45,
        .fill = 0x383B43,
        .raised = 0x25272C,
        .empty = 0x1C1E22,
        .line = 0x24262B,
        .line2 = 0x34373E,
        .elev = 0x1B1D21,
        .text = 0xF2F3F5,
        .text2 = 0xB8BCC5,
        .text3 = 0x989EA9,
        .dis = 0x62676F,
        .accent = 0x4765F0,
        .accentHover = 0x3F5BDD,
        .accentText = 0x9AAEFF,
        .accentSoft = 0x222A4A,
        .accentLine = 0x5B78FF,
        .ok = 0x63CE93,
        .warn = 0xE9B65C,
        .err = 0xFF918A,
        .scrim = QColor(5, 6, 8, 168),
        .shadow = QColor(0, 0, 0, 140),
    };
    return theme;
}

const Theme& lightTheme()
{
    static const Theme theme{
        .bg = 0xE3E4E8,
        .panel = 0xFAFAFB,
        .card = 0xFFFFFF,
        .control = 0xECEDF1,
        .hover = 0xE1E3E8,
        .seg = 0xFFFFFF,
        .fill = 0xD3D7E0,
        .raised = 0xFFFFFF,
        .empty = 0xF1F2F5,
        .line = 0xE1E3E8,
        .line2 = 0xCDD0D8,
        .elev = 0xFFFFFF,
        .text = 0x16181C,
        .text2 = 0x454A54,
        .text3 = 0x5C626D,
        .dis = 0x9DA2AB,
        .accent = 0x3B58E6,
        .accentHover = 0x3049CC,
        .accentText = 0x2C4AD0,
        .accentSoft = 0xE6EAFD,
        .accentLine = 0x4765F0,
        .ok = 0x17703F,
        .warn = 0x7E5200,
        .err = 0xB3261E,
        .scrim = QColor(30, 34, 44, 115),
        .shadow = QColor(44, 52, 72, 56),
    };
    return theme;
}

QPalette paletteOf(const Theme& theme)
{
    QPalette palette;
    palette.setColor(QPalette::Window, theme.panel);
    palette.setColor(QPalette::Base, theme.control);
    palette.setColor(QPalette::AlternateBase, theme.card);
    palette.setColor(QPalette::Button, theme.control);
    palette.setColor(QPalette::ToolTipBase, theme.elev);
    palette.setColor(QPalette::Light, theme.hover);
    palette.setColor(QPalette::Midlight, theme.control);
    palette.setColor(QPalette::Mid, theme.line2);
    palette.setColor(QPalette::Dark, theme.line2);
    palette.setColor(QPalette::Shadow, theme.line);
    palette.setColor(QPalette::Highlight, theme.accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::BrightText, theme.err);
    palette.setColor(QPalette::Link, theme.accentText);
    palette.setColor(QPalette::LinkVisited, theme.accentText);
    palette.setColor(QPalette::PlaceholderText, theme.text3);
    palette.setColor(QPalette::Disabled, QPalette::PlaceholderText, theme.dis);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, theme.text);
        palette.setColor(QPalette::Disabled, role, theme.dis);
    }
    return palette;
}

const Theme& themeOf(const QPalette& palette)
{
    const bool light = palette.color(QPalette::Window).rgb() == lightTheme().panel.rgb();
    return light ? lightTheme() : darkTheme();
}

const Theme& themeOf(const QWidget* widget)
{
    return themeOf(widget->palette());
}

void applyTheme(const Theme& theme)
{
    QApplication::setPalette(paletteOf(theme));
    QToolTip::setPalette(paletteOf(theme));
    QToolTip::setFont(fontOf(Type::small));
}

QFont fontOf(Type type)
{
    const TypeRow& r = row(type);
    QFont font(r.family.toString());
    font.setPixelSize(r.pixels);
    font.setWeight(r.weight);
    font.setLetterSpacing(QFont::AbsoluteSpacing, r.tracking);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

QColor mixed(const QColor& from, const QColor& to, double share)
{
    const auto channel = [share](int a, int b) { return qRound(a + (b - a) * share); };
    return {channel(from.red(), to.red()), channel(from.green(), to.green()),
            channel(from.blue(), to.blue()), channel(from.alpha(), to.alpha())};
}

QColor withOpacity(QColor color, double opacity)
{
    color.setAlphaF(float(color.alphaF() * opacity));
    return color;
}
