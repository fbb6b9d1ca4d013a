#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

// The photos in a folder: files ending in jpg, jpeg, png, heic or tiff in any case, sorted by name
// with numbers by value ("2" before "10"). Skips hidden files and sub-folders.
QList<QUrl> photosInFolder(const QString& folder);

// Names of the photos in a folder that cannot be opened, because a name that is not valid UTF-8
// does not fit in a QUrl. The invalid bytes are given as U+FFFD.
QStringList unreachablePhotosInFolder(const QString& folder);

struct FoundPhotos {
    QList<QUrl> photos;
    QStringList unreachable;    // from unreachablePhotosInFolder(), and names of unreadable folders
};

// The photos of files and folders, in their order. A folder stands for the photos in it. A file is
// included whatever its name, because its content is checked later.
FoundPhotos photosIn(const QList<QUrl>& filesAndFolders);
