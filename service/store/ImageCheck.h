#pragma once

#include <QByteArray>
#include <QDir>
#include <QString>

// Whether `bytes` decode as a picture of type `mimeType` with at most `mostPixels` pixels. The
// decoder reads only files, so the bytes go to a temporary file in the folder `scratch`. Blocks
// while decoding.
bool isImage(const QByteArray& bytes, const QString& mimeType, qint64 mostPixels,
             const QDir& scratch);
