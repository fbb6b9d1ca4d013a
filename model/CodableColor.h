#pragma once

#include <QColor>
#include <QString>

#include <optional>

// A colour as files hold it: sRGB components and opacity, each 0..1, in full precision.
struct CodableColor {
    double red = 0, green = 0, blue = 0, alpha = 1;

    CodableColor() = default;
    CodableColor(double r, double g, double b, double a = 1) : red(r), green(g), blue(b), alpha(a)
    {
    }
    explicit CodableColor(const QColor& color);

    // Components outside 0..1 are brought to the nearest bound; the toolkit would paint them black.
    QColor color() const;
    // The colour at this opacity, which replaces its own.
    QColor withAlpha(double opacity) const;
    // "#RRGGBB", each component to the nearest of 0..255; the opacity is not printed.
    QString hexRGB() const;
    // Six hexadecimal digits, with or without a leading number sign.
    static std::optional<CodableColor> fromHexRGB(QStringView text);

    bool operator==(const CodableColor&) const = default;
};

inline const CodableColor codableBlack{0, 0, 0};
inline const CodableColor codableWhite{1, 1, 1};
