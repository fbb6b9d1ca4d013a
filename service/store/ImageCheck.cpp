#include "service/store/ImageCheck.h"

#include "platform/photo/PhotoDecoder.h"
#include "platform/photo/PhotoHeader.h"

#include <QBuffer>
#include <QTemporaryFile>

using namespace Qt::StringLiterals;

namespace {

QString mimeName(PhotoFormat format)
{
    switch (format) {
    case PhotoFormat::jpeg:
        return u"image/jpeg"_s;
    case PhotoFormat::png:
        return u"image/png"_s;
    case PhotoFormat::webp:
        return u"image/webp"_s;
    case PhotoFormat::heic:
        return u"image/heic"_s;
    case PhotoFormat::tiff:
    case PhotoFormat::bmp:
    case PhotoFormat::gif:
        break;
    }
    return {};
}

}    // namespace

bool isImage(const QByteArray& bytes, const QString& mimeType, qint64 mostPixels,
             const QDir& scratch)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    const auto header = readPhotoHeader(buffer);
    if (!header || mimeType.isEmpty() || mimeName(header->format) != mimeType ||
        qint64(header->size.width()) * header->size.height() > mostPixels)
        return false;
    QTemporaryFile file(scratch.filePath(u"XXXXXX"_s));
    return file.open() && file.write(bytes) == bytes.size() && file.flush() &&
           decodePhoto(file.fileName(), PhotoLevel::full).has_value();
}
