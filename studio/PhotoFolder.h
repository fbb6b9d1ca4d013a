#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

// The photos of a folder: files ending in jpg, jpeg, png, heic or tiff in any case, in natural name
// order; hidden files and sub-folders are skipped.
QList<QUrl> photosInFolder(const QString& folder);

// The names of the photos of a folder that no address can be given, because they are no valid
// UTF-8; what is not, is shown as U+FFFD.
QStringList unreachablePhotosInFolder(const QString& folder);

struct FoundPhotos {
    QList<QUrl> photos;
    QStringList unreachable;    // names, also of folders that may not be read
};

// A mixed choice of files and folders, in order; folders give their photos. Files are taken
// whatever their name: what they hold decides later.
FoundPhotos photosIn(const QList<QUrl>& filesAndFolders);
