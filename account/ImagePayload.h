#pragma once

#include <QByteArray>
#include <QString>

// An image as it is sent to a vision model.
struct ImagePayload {
    QString mimeType;
    QByteArray bytes;
};

// A photo as an upright JPEG whose longer side is at most 1600 pixels; a file that cannot be
// decoded, unchanged. Waits for the disk and the codec. Throws AccountError when the file cannot be
// read or is too large to be sent.
ImagePayload preparedImagePayload(const QString& path);

// The MIME type for the file's extension.
QString mimeType(const QString& path);
