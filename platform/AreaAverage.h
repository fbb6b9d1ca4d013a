#pragma once

#include <QImage>

// The picture at another size, each pixel the mean of the area it covers, weighed exactly. For
// RGB32 and ARGB32_Premultiplied. On the calling thread alone: QImage::scaled() shares its work out
// among threads of Qt's, which run at the interface's priority, and waits for them.
QImage areaAveraged(const QImage& picture, QSize size);
