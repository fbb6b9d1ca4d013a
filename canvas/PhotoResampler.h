#pragma once

#include "canvas/PixelRect.h"

#include <QImage>

// The pixels that `window` shows of `source` resampled to those of `place`: Catmull-Rom, widened by
// the ratio when it shrinks, in integers, so that the same numbers give the same bytes everywhere.
// `window` is cut to the place. Only what the window shows is computed, however large the place.
// RGB32 stays RGB32, all else becomes ARGB32_Premultiplied. Null when anything is empty.
QImage resampled(const QImage& source, const PixelRect& place, QRect window);
