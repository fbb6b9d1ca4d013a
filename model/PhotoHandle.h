#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>

// Names a photo without its pixels, which come from PhotoCache; cheap to copy.
struct PhotoHandle {
    QString path;
    QSize size;                // upright, in pixels of the file
    bool reducible = false;    // its format decodes at a reduced size in less time and memory
    QByteArray digest;         // of the file's bytes; identifies the content
    bool operator==(const PhotoHandle&) const = default;
};
