#pragma once

#include <QColor>
#include <QString>

#include <optional>

// A colour as files store it: sRGB components and opacity, each 0..1.
struct CodableColor {
    double red = 0, green = 0, blue = 0, alpha = 1;

    CodableColor() = default;
    CodableColor(double r, double g, double b, double a = 1) : red(r), green(g), blue(b), alpha(a)
    {
    }
    explicit CodableColor(const QColor& color);

    // Limits each component to 0..1: with an opacity outside that range, Qt would make an invalid
    // colour, which paints black.
    QColor color() const;
    // The colour with `opacity` in place of `alpha`.
    QColor withAlpha(double opacity) const;
    // Returns "#RRGGBB" with each component rounded to 0..255. The opacity is left out.
    QString hexRGB() const;
    // Reads six hexadecimal digits, with or without a leading number sign.
    static std::optional<CodableColor> fromHexRGB(QStringView text);

    bool operator==(const CodableColor&) const = default;
};

inline const CodableColor codableBlack{0, 0, 0};
inline const CodableColor codableWhite{1, 1, 1};
