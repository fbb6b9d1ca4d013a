#pragma once

#include <QByteArray>
#include <QImage>

// Converts the picture to sRGB, as RGB32 or ARGB32_Premultiplied, from the colour space it carries;
// `rawProfile` stands in where the reader dropped a profile that it does not understand. A profile
// that is not for red, green and blue changes nothing: it is that of a CMYK photo, which the reader
// has already converted.
QImage inSrgb(QImage picture, const QByteArray& rawProfile = {});
