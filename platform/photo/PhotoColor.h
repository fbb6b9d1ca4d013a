#pragma once

#include <QByteArray>
#include <QImage>

// Converts `picture` from its own colour space to sRGB, as RGB32 or ARGB32_Premultiplied.
// `rawProfile` is used if the reader dropped a profile that it does not understand. A profile that
// is not for red, green and blue is ignored: it comes from a CMYK photo, which the reader has
// already converted.
QImage inSrgb(QImage picture, const QByteArray& rawProfile = {});
