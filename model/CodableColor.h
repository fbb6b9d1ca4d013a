#pragma once

#include <QColor>
#include <QString>

#include <optional>

// A colour as files store it: sRGB components and opacity, each 0..1, in full precision.
struct CodableColor {
    double red = 0, green = 0, blue = 0, alpha = 1;

    CodableColor() = default;
    CodableColor(double r, double g, double b, double a = 1) : red(r), green(g), blue(b), alpha(a)
    {
    }
    explicit CodableColor(const QColor& color);

    // Components outside 0..1 are brought to the nearest bound; Qt would paint them black.
    QColor color() const;
    // The colour with this opacity in place of `alpha`.
    QColor withAlpha(double opacity) const;
    // "#RRGGBB", each component rounded to 0..255; without the opacity.
    QString hexRGB() const;
    // Reads six hexadecimal digits, with or without a leading number sign.
    static std::optional<CodableColor> fromHexRGB(QStringView text);

    bool operator==(const CodableColor&) const = default;
};

inline const CodableColor codableBlack{0, 0, 0};
inline const CodableColor codableWhite{1, 1, 1};
