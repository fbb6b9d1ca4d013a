#pragma once

#include <QImage>
#include <QRect>
#include <QSize>

// The pixels that `window` shows of `source` resampled to `target` pixels: Catmull-Rom, widened by
// the ratio when it shrinks, in integers, so that the same numbers give the same bytes everywhere.
// `window` is cut to the target. Only what the window shows is computed, however large the target.
// RGB32 stays RGB32, all else becomes ARGB32_Premultiplied. Null when anything is empty.
QImage resampled(const QImage& source, QSize target, QRect window);
