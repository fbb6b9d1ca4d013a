#include "studio/PhotoFolder.h"

#include <QCollator>
#include <QDir>
#include <QLocale>
#include <QStringDecoder>

#include <algorithm>
#include <filesystem>
#include <system_error>

using namespace Qt::StringLiterals;

namespace {

const QStringList& photoExtensions()
{
    static const QStringList extensions{u"jpg"_s, u"jpeg"_s, u"png"_s, u"heic"_s, u"tiff"_s};
    return extensions;
}

}    // namespace

QList<QUrl> photosInFolder(const QString& folder)
{
    QFileInfoList files = QDir(folder).entryInfoList(QDir::Files, QDir::Unsorted);
    files.removeIf(
        [](const QFileInfo& file) { return !photoExtensions().contains(file.suffix().toLower()); });
    // Sets a locale, because QCollator ignores the numeric mode in the C locale, which is the
    // default on a system without language settings.
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

// Reads the folder without QDir, which leaves out names that are not valid UTF-8.
QStringList unreachablePhotosInFolder(const QString& folder)
{
    namespace fs = std::filesystem;
    QStringList names;
    std::error_code failure;
    for (fs::directory_iterator entry(folder.toStdU16String(), failure);
         !failure && entry != fs::directory_iterator(); entry.increment(failure)) {
        const std::u8string bytes = entry->path().filename().u8string();
        QStringDecoder decoder(QStringDecoder::Utf8);
        const QString name = decoder(
            QByteArrayView(reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size())));
        std::error_code unknown;
        if (decoder.hasError() && !name.startsWith(u'.') &&
            photoExtensions().contains(QFileInfo(name).suffix().toLower()) &&
            entry->is_regular_file(unknown))
            names.append(name);
    }
    return names;
}

FoundPhotos photosIn(const QList<QUrl>& filesAndFolders)
{
    FoundPhotos found;
    for (const QUrl& url : filesAndFolders) {
        const QFileInfo file(url.toLocalFile());
        if (file.isDir() && !(file.isReadable() && file.isExecutable())) {
            found.unreachable.append(file.fileName());
        } else if (file.isDir()) {
            found.photos.append(photosInFolder(file.absoluteFilePath()));
            found.unreachable.append(unreachablePhotosInFolder(file.absoluteFilePath()));
        } else {
            found.photos.append(QUrl::fromLocalFile(file.absoluteFilePath()));
        }
    }
    return found;
}
