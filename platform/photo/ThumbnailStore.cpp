#include "platform/photo/ThumbnailStore.h"

#include "platform/AtomicFile.h"
#include "platform/Workers.h"

#include <QBuffer>
#include <QColorSpace>
#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QtEndian>

#include <libdeflate.h>

#include <algorithm>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 pruningStep = 20'000'000;    // bytes written between two prunings
constexpr qint64 largestFile = 8 << 20;
constexpr qint64 diskBlock = 4096;    // bytes that the smallest file takes on the disk
constexpr int digestLength = 32;

QString suffix()
{
    return u".thumbnail"_qs;
}

// "1 6016 4016 reducible <digest in hexadecimal>": version of this format, upright size, whether
// the photo can be decoded at a reduced size, digest.
QString describe(const AcceptedPhoto& photo)
{
    return u"1 %1 %2 %3 %4"_qs.arg(photo.info.size.width())
        .arg(photo.info.size.height())
        .arg(photo.info.reducible ? u"reducible"_qs : u"whole"_qs,
             QString::fromLatin1(photo.digest.toHex()));
}

std::optional<AcceptedPhoto> described(const QString& text)
{
    const QStringList words = text.split(u' ');
    if (words.size() != 5 || words[0] != u"1"_qs)
        return {};
    AcceptedPhoto photo;
    photo.info.size = QSize(words[1].toInt(), words[2].toInt());
    photo.info.reducible = words[3] == u"reducible"_qs;
    photo.digest = QByteArray::fromHex(words[4].toLatin1());
    if (photo.info.size.isEmpty() || photo.digest.size() != digestLength)
        return {};
    return photo;
}

// Each file ends with a checksum, because readers of a JPEG that was cut short fill the rest with
// grey.
quint32 checksum(const QByteArray& bytes, qsizetype length)
{
    return libdeflate_crc32(0, bytes.constData(), std::size_t(length));
}

void appendChecksum(QByteArray& bytes)
{
    const quint32 sum = qToLittleEndian(checksum(bytes, bytes.size()));
    bytes.append(reinterpret_cast<const char*>(&sum), sizeof sum);
}

bool takeChecksum(QByteArray& bytes)
{
    const qsizetype length = bytes.size() - qsizetype(sizeof(quint32));
    if (length < 0 ||
        qFromLittleEndian<quint32>(bytes.constData() + length) != checksum(bytes, length))
        return false;
    bytes.truncate(length);
    return true;
}

enum class Part { facts, withPicture };

std::optional<AcceptedPhoto> read(const QString& file, Part part)
{
    QFile source(file);
    if (file.isEmpty() || !source.open(QIODevice::ReadOnly) || source.size() > largestFile)
        return {};
    QByteArray bytes = source.readAll();
    if (!takeChecksum(bytes))
        return {};
    const bool isPng = bytes.startsWith("\x89PNG"), isJpeg = bytes.startsWith("\xff\xd8");
    if (!isPng && !isJpeg)
        return part == Part::facts ? described(QString::fromLatin1(bytes)) : std::nullopt;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, isPng ? "png" : "jpeg");
    reader.setAutoDetectImageFormat(false);
    auto photo = described(reader.text(u"photo"_qs));
    if (!photo || reader.size() != thumbnailSize(photo->info.size))
        return {};
    if (part == Part::facts)
        return photo;
    photo->thumbnail = reader.read();
    if (photo->thumbnail.isNull())
        return {};
    photo->thumbnail.convertTo(photo->thumbnail.hasAlphaChannel()
                                   ? QImage::Format_ARGB32_Premultiplied
                                   : QImage::Format_RGB32);
    photo->thumbnail.setColorSpace(QColorSpace(QColorSpace::SRgb));
    return photo;
}

}    // namespace

ThumbnailStore::ThumbnailStore(QString folder, qint64 budget)
    : m_folder(std::move(folder)), m_budget(budget)
{
    QDir().mkpath(m_folder);
    // Other users of the machine must not see the thumbnails.
    QFile::setPermissions(m_folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QString ThumbnailStore::fileFor(const QString& photo) const
{
    struct stat status;
    if (stat(QFile::encodeName(photo).constData(), &status) != 0)
        return {};
    QCryptographicHash hash(QCryptographicHash::Blake2b_160);
    hash.addData(QFileInfo(photo).absoluteFilePath().toUtf8());
    for (const qint64 fact : {qint64(status.st_size), qint64(status.st_mtim.tv_sec),
                              qint64(status.st_mtim.tv_nsec), qint64(status.st_ino)})
        hash.addData(QByteArrayView(reinterpret_cast<const char*>(&fact), sizeof fact));
    return m_folder + u'/' + QString::fromLatin1(hash.result().toHex()) + suffix();
}

std::optional<AcceptedPhoto> ThumbnailStore::load(const QString& file) const
{
    return read(file, Part::withPicture);
}

std::optional<AcceptedPhoto> ThumbnailStore::loadFacts(const QString& file) const
{
    return read(file, Part::facts);
}

void ThumbnailStore::save(const QString& file, const AcceptedPhoto& photo)
{
    if (photo.thumbnail.isNull()) {
        write(file, describe(photo).toLatin1());
        return;
    }
    QImage picture = photo.thumbnail;
    picture.setColorSpace({});    // always sRGB, and a profile would double the size of the file
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, picture.hasAlphaChannel() ? "png" : "jpeg");
    writer.setQuality(picture.hasAlphaChannel() ? -1 : 90);
    writer.setText(u"photo"_qs, describe(photo));
    if (writer.write(picture))
        write(file, bytes);
}

// Does not wait until the file is on the disk: if a crash damages it, the thumbnail is made again.
void ThumbnailStore::write(const QString& file, QByteArray bytes)
{
    appendChecksum(bytes);
    const qint64 written = std::max(qint64(bytes.size()), diskBlock);
    if (file.isEmpty() || !writeAtomically(file, bytes).isEmpty())
        return;
    if (m_writtenSincePruning.fetch_add(written) + written >= pruningStep) {
        m_writtenSincePruning = 0;
        runOnWorker([folder = m_folder, budget = m_budget] { pruneThumbnails(folder, budget); });
    }
}

void pruneThumbnails(const QString& folder, qint64 budget)
{
    const QDateTime abandoned = QDateTime::currentDateTime().addSecs(-3600);
    qint64 total = 0;
    constexpr auto filter = QDir::Files | QDir::Hidden;
    // QDir::Time lists the newest file first.
    for (const QFileInfo& info : QDir(folder).entryInfoList(filter, QDir::Time)) {
        if (!info.fileName().endsWith(suffix())) {
            if (info.fileName().startsWith(unfinishedPrefix()) && info.lastModified() < abandoned)
                QFile::remove(info.filePath());
            continue;
        }
        total += std::max(info.size(), diskBlock);
        if (total > budget)
            QFile::remove(info.filePath());
    }
}
