#pragma once

#include <QColor>
#include <QImage>
#include <QRectF>

// A soft shadow as a picture: the rounded box blurred by a Gaussian, where it falls inside
// `visible`.
struct ShadowPicture {
    QPoint position;    // of the picture's top left pixel
    QImage image;       // ARGB32_Premultiplied; null where nothing shows
};

// Standard deviations beyond which a blur is below 1/255.
inline constexpr double blurReach = 3.2;

// All in device pixels; `cornerRadius` at most half the box's shorter side. The picture depends on
// the numbers alone and is remembered, because the boxes of a batch are the same again and again.
// Any thread.
ShadowPicture boxShadow(const QRectF& box, double cornerRadius, double sigma, const QColor& color,
                        const QRect& visible);

// Blurs one 8-bit channel in place: three passes of a box with fractional ends, whose variance is
// exactly sigma².
void gaussianBlur(QImage& alpha, double sigma);
