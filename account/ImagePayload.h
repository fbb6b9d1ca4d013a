#pragma once

#include <QByteArray>
#include <QString>

// An image as it is sent to a vision model.
struct ImagePayload {
    QString mimeType;
    QByteArray bytes;
};

// The photo as an upright JPEG whose longer side has at most 1600 pixels; the unchanged file if it
// cannot be decoded. Reads, decodes and encodes before it returns: call it on a worker. Throws
// AccountError if the file cannot be read or is too large to be sent.
ImagePayload preparedImagePayload(const QString& path);

// A photo as an upright JPEG whose longer side is at most `longestSide` pixels; empty for a file
// that cannot be decoded. Waits for the disk and the codec.
QByteArray uprightJpeg(const QString& path, int longestSide);

// The MIME type for the file's extension.
QString mimeType(const QString& path);
