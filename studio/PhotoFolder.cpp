#include "studio/PhotoFolder.h"

#include <QCollator>
#include <QDir>
#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

QList<QUrl> photosInFolder(const QString& folder)
{
    static const QStringList extensions{u"jpg"_s, u"jpeg"_s, u"png"_s, u"heic"_s, u"tiff"_s};
    QFileInfoList files = QDir(folder).entryInfoList(QDir::Files, QDir::Unsorted);
    files.removeIf(
        [](const QFileInfo& file) { return !extensions.contains(file.suffix().toLower()); });
    // Numeric mode is ignored in the C locale of a fresh system.
    QCollator order(QLocale(u"es"_s));
    order.setNumericMode(true);
    std::ranges::sort(files, [&](const QFileInfo& a, const QFileInfo& b) {
        const int compared = order.compare(a.fileName(), b.fileName());
        return compared != 0 ? compared < 0 : a.fileName() < b.fileName();
    });
    QList<QUrl> urls;
    for (const QFileInfo& file : files)
        urls.append(QUrl::fromLocalFile(file.absoluteFilePath()));
    return urls;
}

QList<QUrl> photosIn(const QList<QUrl>& filesAndFolders)
{
    QList<QUrl> photos;
    for (const QUrl& url : filesAndFolders) {
        const QFileInfo file(url.toLocalFile());
        if (file.isDir())
            photos.append(photosInFolder(file.absoluteFilePath()));
        else
            photos.append(QUrl::fromLocalFile(file.absoluteFilePath()));
    }
    return photos;
}
