#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

// The photos of a folder: files ending in jpg, jpeg, png, heic or tiff in any case, in natural name
// order; hidden files and sub-folders are skipped.
QList<QUrl> photosInFolder(const QString& folder);

// Names of the folder's photos that cannot be opened: no URL can hold a name that is no valid
// UTF-8. Its wrong bytes are given as U+FFFD.
QStringList unreachablePhotosInFolder(const QString& folder);

struct FoundPhotos {
    QList<QUrl> photos;
    QStringList unreachable;    // names of photos without a URL, and of unreadable folders
};

// The photos of files and folders, in order. A folder gives its photos; a file is taken whatever
// its name, because its content decides later.
FoundPhotos photosIn(const QList<QUrl>& filesAndFolders);
