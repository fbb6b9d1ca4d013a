#pragma once

#include <QColor>
#include <QImage>
#include <QRectF>

// The visible part of a soft shadow, which is a rounded box blurred by a Gaussian.
struct ShadowPicture {
    QPoint position;    // of the top left pixel of `image`
    QImage image;       // ARGB32_Premultiplied; null when no part is visible
};

// At this distance from a box, in standard deviations, its blur has faded to less than 1/255.
inline constexpr double blurReach = 3.2;

// Draws the shadow of `box`. All lengths are in device pixels; `cornerRadius` is at most half of
// the box's shorter side. The pictures are cached, because many items of a batch have equal boxes.
// May be called on any thread.
ShadowPicture boxShadow(const QRectF& box, double cornerRadius, double sigma, const QColor& color,
                        const QRect& visible);

// Blurs an 8-bit channel in place, nearly as a Gaussian does: with three passes of a box filter
// with fractional ends. Their variances add up to sigma² exactly.
void gaussianBlur(QImage& alpha, double sigma);
