#pragma once
#include <QColor>
#include <QFont>
#include <QPalette>
#include <QStringView>

#include <array>

class QWidget;

// The colours of one theme. No state may be shown by a colour alone: an icon or a word goes with
// it.
struct Theme {
    QColor bg;         // the stage around the canvas
    QColor panel;      // bars, columns, dialogs
    QColor card;       // rows and boxes
    QColor control;    // buttons, fields, the ground of segmented controls
    QColor hover;      // a control or menu row under the pointer
    QColor seg;        // the chosen segment; its text must not be text3
    QColor fill;       // the empty part of a value bar
    QColor raised;     // a button on bg, where `control` would not stand out
    QColor empty;      // the ground of a picture that is still missing
    QColor line;       // hairlines
    QColor line2;      // outlines, progress tracks
    QColor elev;       // popovers, menus, tooltips
    QColor text, text2, text3;
    QColor dis;    // disabled text and icons only
    QColor accent, accentHover;
    QColor accentText, accentSoft;
    QColor accentLine;    // focus, selection, progress, guides
    QColor ok, warn, err;
    QColor scrim;
    QColor shadow;
};

const Theme& darkTheme();
const Theme& lightTheme();

// A theme reaches the widgets as their palette. Qt then tells every widget of a change, and windows
// can have different themes at the same time.
QPalette paletteOf(const Theme& theme);
const Theme& themeOf(const QPalette& palette);
const Theme& themeOf(const QWidget* widget);

// Switches all windows to the theme.
void applyTheme(const Theme& theme);

enum class Type {
    caption,
    captionSemibold,
    small,
    smallMedium,
    body,
    bodyMedium,
    heading,
    large,
    largeSemibold,
    emptyTitle,
    sheetTitle,
    panelTitle,
    display,
    claim
};
struct TypeRow {
    Type type;
    int pixels, lineHeight;
    QFont::Weight weight;
    double tracking = 0;    // pixels added between letters
    QStringView family = u"Inter";
};
inline constexpr std::array types{
    TypeRow{Type::caption, 11, 14, QFont::Normal},
    TypeRow{Type::captionSemibold, 11, 14, QFont::DemiBold},
    TypeRow{Type::small, 12, 16, QFont::Normal},
    TypeRow{Type::smallMedium, 12, 16, QFont::Medium},
    TypeRow{Type::body, 13, 18, QFont::Normal},
    TypeRow{Type::bodyMedium, 13, 18, QFont::Medium},
    TypeRow{Type::heading, 13, 18, QFont::DemiBold},
    TypeRow{Type::large, 14, 20, QFont::Normal},
    TypeRow{Type::largeSemibold, 14, 20, QFont::DemiBold},
    TypeRow{Type::emptyTitle, 24, 30, QFont::DemiBold, -0.4},
    TypeRow{Type::sheetTitle, 17, 24, QFont::DemiBold},
    TypeRow{Type::panelTitle, 20, 28, QFont::DemiBold},
    TypeRow{Type::display, 28, 32, QFont::DemiBold, -0.4, u"Inter Display"},
    TypeRow{Type::claim, 32, 40, QFont::Bold, -0.6, u"Inter Display"},
};
constexpr const TypeRow& row(Type type)
{
    return types[std::size_t(type)];
}
static_assert(std::ranges::all_of(types, [](const auto& r) { return &row(r.type) == &r; }));
QFont fontOf(Type type);

namespace Space {
inline constexpr int hair = 4, small = 8, medium = 12, column = 16, large = 24, dialog = 32;
}
namespace Radius {
inline constexpr int thumbnail = 6, chip = 6, field = 8, button = 9, card = 12, popover = 14,
                     sheet = 16;
}

// Mixes the colours and their opacities: `share` 0 gives `from`, 1 gives `to`.
QColor mixed(const QColor& from, const QColor& to, double share);
QColor withOpacity(QColor color, double opacity);
