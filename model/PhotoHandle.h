#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>

// A photo by name: cheap to copy, never the pixels. They come from the photo cache.
struct PhotoHandle {
    QString path;
    QSize size;                // upright, in pixels of the file
    bool reducible = false;    // its format decodes at a reduced size for less
    QByteArray digest;         // of the file's bytes: the identity of the content
    bool operator==(const PhotoHandle&) const = default;
};
