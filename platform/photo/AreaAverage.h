#pragma once

#include <QImage>

// Resizes `picture`: each new pixel is the mean of the area that it covers, with exact weights.
// Only for RGB32 and ARGB32_Premultiplied. Uses only the calling thread. QImage::scaled() would
// divide the work among threads of Qt's global pool, which run at the interface's priority, and
// wait for them.
QImage areaAveraged(const QImage& picture, QSize size);
