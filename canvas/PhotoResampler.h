#pragma once

#include "canvas/PixelRect.h"

#include <QImage>

// Scales `source` to fill `place` and returns the part of it inside `window`. Only this part is
// computed, however large `place` is. The filter is Catmull-Rom; for shrinking, it is widened by
// the scale. Pixels are summed in integers, so that equal input gives equal bytes on every machine.
// An RGB32 image stays RGB32; any other becomes ARGB32_Premultiplied. Null if `source` is null or
// `window` and `place` do not overlap.
QImage resampled(const QImage& source, const PixelRect& place, QRect window);
