#pragma once

#include <QImage>

// Resizes `picture`: each new pixel is the mean of the area it covers, weighed exactly. For RGB32
// and ARGB32_Premultiplied. Works on the calling thread alone: QImage::scaled() divides its work
// among threads of Qt's, which run at the interface's priority, and waits for them.
QImage areaAveraged(const QImage& picture, QSize size);
