#pragma once

#include <QColor>
#include <QImage>
#include <QRectF>

// A soft shadow as a picture: the part inside `visible` of a rounded box blurred by a Gaussian.
struct ShadowPicture {
    QPoint position;    // of the top left pixel of `image`
    QImage image;       // ARGB32_Premultiplied; null when no part is visible
};

// A blur is below 1/255 beyond this many standard deviations.
inline constexpr double blurReach = 3.2;

// The shadow of `box`, in device pixels. `cornerRadius` is at most half of the box's shorter side.
// Pictures are remembered by the arguments, as the boxes of a batch repeat. Any thread.
ShadowPicture boxShadow(const QRectF& box, double cornerRadius, double sigma, const QColor& color,
                        const QRect& visible);

// Blurs an 8-bit channel in place: three passes of a box filter with fractional ends, whose
// variances add up to sigma² exactly.
void gaussianBlur(QImage& alpha, double sigma);
