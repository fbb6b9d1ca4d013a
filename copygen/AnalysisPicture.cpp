#include "copygen/AnalysisPicture.h"

#include "platform/photo/ImageAccess.h"
#include "platform/photo/PhotoDecoder.h"

#include <QDir>
#include <QFile>
#include <QImageWriter>
#include <QUuid>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString pictureName = u"moltiva-local-analysis-%1.png"_s;

// The system's temporary folder, unless its path has a comma: llama-mtmd-cli splits the path of a
// picture there.
QString pictureFolder()
{
    const QStringList folders{QDir::tempPath(), u"/tmp"_s, u"/var/tmp"_s};
    const auto found =
        std::ranges::find_if(folders, [](const QString& folder) { return !folder.contains(u','); });
    return *found;
}

bool writePicture(const QUrl& photo, const QString& path, const std::stop_token& stop)
{
    constexpr int quickCompression = 11;    // of 100; the usual one takes seconds for a large photo
    const auto decoded = ImageAccess::withSecurityScope(photo, [&] {
        return decodePhoto(photo.toLocalFile(), [](const PhotoInfo&) { return PhotoLevel::full; });
    });
    QFile file(path);
    if (!decoded || stop.stop_requested() || !file.open(QIODevice::WriteOnly))
        return false;
    QImageWriter writer(&file, "png");
    writer.setCompression(quickCompression);
    const QImage& image = decoded->image;
    // The pixels alone, without the texts and the colour profile of the photo.
    const QImage pixels(image.constBits(), image.width(), image.height(), image.bytesPerLine(),
                        image.format());
    return writer.write(pixels) && file.flush();
}

}    // namespace

AnalysisPicture::AnalysisPicture(const QUrl& photo, const std::stop_token& stop)
{
    const QString name = pictureName.arg(QUuid::createUuid().toString(QUuid::WithoutBraces));
    const QString path = QDir(pictureFolder()).filePath(name);
    m_file = std::make_unique<SystemLock>(path, SystemLock::Open::fresh);
    if (m_file->isOurs() && writePicture(photo, path, stop))
        m_path = path;
}

void AnalysisPicture::removeLeftovers()
{
    const QDir folder(pictureFolder());
    for (const QString& name : folder.entryList({pictureName.arg(u"*"_s)}, QDir::Files)) {
        // A program that goes on holds the lock on its picture; a lock that is ours removes it.
        const SystemLock lock(folder.filePath(name), SystemLock::Open::existing);
    }
}
