#pragma once

#include <QByteArray>
#include <QDir>
#include <QString>

// Whether `bytes` decode as a picture of type `mimeType` with at most `mostPixels` pixels. The
// decoder reads files only: `scratch` is a folder for a temporary one. Blocks while decoding.
bool isImage(const QByteArray& bytes, const QString& mimeType, qint64 mostPixels,
             const QDir& scratch);
