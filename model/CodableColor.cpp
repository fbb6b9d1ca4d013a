#include "model/CodableColor.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

// Limits `component` to 0..1; NaN becomes 0.
double unit(double component)
{
    return component > 0 ? std::min(component, 1.0) : 0.0;
}

}    // namespace

CodableColor::CodableColor(const QColor& color)
{
    const QColor rgb = color.toRgb();
    red = rgb.redF();
    green = rgb.greenF();
    blue = rgb.blueF();
    alpha = rgb.alphaF();
}

QColor CodableColor::color() const
{
    return withAlpha(alpha);
}

QColor CodableColor::withAlpha(double opacity) const
{
    return QColor::fromRgbF(float(unit(red)), float(unit(green)), float(unit(blue)),
                            float(unit(opacity)));
}

QString CodableColor::hexRGB() const
{
    const auto byte = [](double component) { return int(std::lround(unit(component) * 255)); };
    return QString::asprintf("#%02X%02X%02X", byte(red), byte(green), byte(blue));
}

std::optional<CodableColor> CodableColor::fromHexRGB(QStringView text)
{
    if (text.startsWith(u'#'))
        text = text.mid(1);
    const auto isDigit = [](QChar c) {
        return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
    };
    if (text.size() != 6 || !std::ranges::all_of(text, isDigit))
        return std::nullopt;
    const uint rgb = text.toUInt(nullptr, 16);
    return CodableColor((rgb >> 16) / 255.0, (rgb >> 8 & 0xff) / 255.0, (rgb & 0xff) / 255.0);
}
