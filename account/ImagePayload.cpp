#include "account/ImagePayload.h"

#include "account/AccountError.h"
#include "platform/photo/PhotoDecoder.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace {

constexpr int longestSent = 1600;    // pixels
constexpr int jpegQuality = 82;
// In bytes; as base64 they must fit into a request of 64 MiB.
constexpr qint64 largestRaw = 40 << 20;

QSize fittingSize(QSize photo, int longestSide)
{
    const double scale = qMin(1.0, double(longestSide) / qMax(photo.width(), photo.height()));
    return QSize(qRound(photo.width() * scale), qRound(photo.height() * scale))
        .expandedTo(QSize(1, 1));
}

// Transparent pixels become white: JPEG has no alpha channel.
QImage redrawn(const QImage& picture, QSize size)
{
    QImage drawn(size, QImage::Format_RGB32);
    drawn.fill(Qt::white);
    QPainter painter(&drawn);
    painter.drawImage(0, 0, picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    return drawn;
}

}    // namespace

QByteArray uprightJpeg(const QString& path, int longestSide)
{
    const auto photo = decodePhoto(path, [&](const PhotoInfo& info) {
        return coveringLevel(info.size, fittingSize(info.size, longestSide));
    });
    QByteArray bytes;
    if (!photo)
        return bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(jpegQuality);
    if (!writer.write(redrawn(photo->image, fittingSize(photo->info.size, longestSide))))
        bytes.clear();
    return bytes;
}

ImagePayload preparedImagePayload(const QString& path)
{
    if (const QByteArray jpeg = uprightJpeg(path, longestSent); !jpeg.isEmpty())
        return {u"image/jpeg"_s, jpeg};
    QFile file(path);
    const QString unread = u"No se ha podido leer %1."_s.arg(QFileInfo(path).fileName());
    if (!file.open(QIODevice::ReadOnly))
        throw AccountError::message(unread);
    if (file.size() > largestRaw) {
        const QString code = u"invalid_image"_s;
        throw AccountError::message(userMessage(code), code);
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFile::NoError)
        throw AccountError::message(unread);
    return {mimeType(path), bytes};
}

QString mimeType(const QString& path)
{
    const QString extension = QFileInfo(path).suffix().toLower();
    if (extension == u"png"_s || extension == u"webp"_s)
        return u"image/"_s + extension;
    if (extension == u"heic"_s || extension == u"heif"_s)
        return u"image/heic"_s;
    return u"image/jpeg"_s;
}
