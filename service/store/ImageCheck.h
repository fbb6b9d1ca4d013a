#pragma once

#include <QByteArray>
#include <QDir>
#include <QString>

// Whether the bytes are a picture of the kind that is said, of at most so many pixels, and decode.
// The decoder reads files: `scratch` is a folder for one. Waits.
bool isImage(const QByteArray& bytes, const QString& mimeType, qint64 mostPixels,
             const QDir& scratch);
