#pragma once

#include <QByteArray>
#include <QImage>

// The picture in sRGB, as RGB32 or ARGB32_Premultiplied. Its profile is the colour space it
// carries; `rawProfile` stands in where the reader dropped one it does not understand. A profile
// that is not for red, green and blue (that of a CMYK photo, already converted plainly) changes
// nothing.
QImage inSrgb(QImage picture, const QByteArray& rawProfile = {});
