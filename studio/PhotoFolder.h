#pragma once

#include <QList>
#include <QString>
#include <QUrl>

// The photos of a folder: files ending in jpg, jpeg, png, heic or tiff in any case, in natural name
// order; hidden files and sub-folders are skipped.
QList<QUrl> photosInFolder(const QString& folder);

// A mixed choice of files and folders, in order; folders give their photos. Files are taken
// whatever their name: what they hold decides later.
QList<QUrl> photosIn(const QList<QUrl>& filesAndFolders);
