#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>

// Refers to a photo without its pixels, which come from PhotoCache. Cheap to copy.
struct PhotoHandle {
    QString path;
    QSize size;                // of the upright photo, in pixels of the file
    bool reducible = false;    // whether decoding at a reduced size saves time and memory
    QByteArray digest;         // BLAKE2b-256 of the file's bytes; may be empty
    bool operator==(const PhotoHandle&) const = default;
};
