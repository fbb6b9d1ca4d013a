#pragma once

#include <QByteArray>
#include <QString>

// An image as a vision model is sent it.
struct ImagePayload {
    QString mimeType;
    QByteArray bytes;
};

// A photo as a JPEG whose longer side is at most 1600 pixels, upright; what is no photo, as it
// stands. Waits for the disk and the codec. Throws AccountError when the file cannot be read or is
// too large to be sent.
ImagePayload preparedImagePayload(const QString& path);

// By the file's extension.
QString mimeType(const QString& path);
