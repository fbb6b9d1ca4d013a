#pragma once

#include "canvas/PixelRect.h"

#include <QImage>

// Resizes `source` to `place` and returns the part inside `window`, which is cut to `place`. Only
// that part is computed, however large the place. The filter is Catmull-Rom, widened by the ratio
// when shrinking, in integers, so that equal input gives equal bytes everywhere. RGB32 stays RGB32,
// all else becomes ARGB32_Premultiplied. Null when anything is empty.
QImage resampled(const QImage& source, const PixelRect& place, QRect window);
