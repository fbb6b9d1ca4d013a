#include "platform/photo/PhotoDecoder.h"

#include "platform/photo/AreaAverage.h"
#include "platform/photo/DecodeGate.h"
#include "platform/photo/HeicPhoto.h"
#include "platform/photo/PhotoBytes.h"
#include "platform/photo/PhotoColor.h"
#include "platform/photo/PhotoHeader.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QLibrary>
#include <QTransform>

#include <webp/demux.h>

#include <algorithm>
#include <mutex>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 sharedBytes = 280'000'000;     // bytes; budget of all decodings together
constexpr qint64 largestAlone = 600'000'000;    // bytes; limit of a decoding that runs alone

DecodeGate& gate()
{
    static DecodeGate shared(sharedBytes);
    return shared;
}

const char* readerName(PhotoFormat format)
{
    switch (format) {
    case PhotoFormat::jpeg:
        return "jpeg";
    case PhotoFormat::png:
        return "png";
    case PhotoFormat::tiff:
        return "tiff";
    case PhotoFormat::webp:
        return "webp";
    case PhotoFormat::bmp:
        return "bmp";
    case PhotoFormat::gif:
        return "gif";
    case PhotoFormat::heic:
        break;
    }
    return "";
}

// Stops libtiff from writing warnings to standard error. Only Qt's plugin links libtiff, so the two
// functions that set its handlers are looked up by name.
void silenceTiff()
{
    static std::once_flag once;
    std::call_once(once, [] {
        using Setter = void* (*)(void*);
        QLibrary tiff(u"tiff"_qs, 6);
        for (const char* name : {"TIFFSetWarningHandler", "TIFFSetErrorHandler"}) {
            if (const auto set = reinterpret_cast<Setter>(tiff.resolve(name)))
                set(nullptr);
        }
    });
}

int webpOrientation(const QByteArray& bytes)
{
    const WebPData data{reinterpret_cast<const uint8_t*>(bytes.constData()),
                        std::size_t(bytes.size())};
    WebPDemuxer* const demuxer = WebPDemux(&data);
    if (!demuxer)
        return 1;
    int orientation = 1;
    WebPChunkIterator chunk;
    if (WebPDemuxGetChunk(demuxer, "EXIF", 1, &chunk)) {
        constexpr std::size_t longest = 1 << 20;
        if (chunk.chunk.size <= longest)
            orientation = exifOrientation(QByteArray(
                reinterpret_cast<const char*>(chunk.chunk.bytes), qsizetype(chunk.chunk.size)));
        WebPDemuxReleaseChunkIterator(&chunk);
    }
    WebPDemuxDelete(demuxer);
    return orientation;
}

// The EXIF orientation that must still be applied after reading. It is 1 (upright) for formats
// without an orientation and for those whose reader applies it.
int orientationOf(const PhotoHeader& header, const QByteArray& bytes)
{
    return header.format == PhotoFormat::webp ? webpOrientation(bytes) : header.orientation;
}

bool isTurned(int orientation)
{
    return orientation >= 5;
}

QImage uprightFrom(QImage image, int orientation)
{
    const bool mirrored =
        orientation == 2 || orientation == 4 || orientation == 5 || orientation == 7;
    const int degrees = orientation == 3 || orientation == 4   ? 180
                        : orientation == 5 || orientation == 8 ? 270
                        : orientation == 6 || orientation == 7 ? 90
                                                               : 0;
    if (mirrored)
        image = image.mirrored(true, false);
    return degrees ? image.transformed(QTransform().rotate(degrees)) : image;
}

// The PhotoInfo that the header gives. The size is upright only for a JPEG. Other formats are
// always decoded at full size, so the level chosen from their size does not matter.
PhotoInfo infoBeforeDecoding(const PhotoHeader& header)
{
    return {isTurned(header.orientation) ? header.size.transposed() : header.size,
            header.format == PhotoFormat::jpeg};
}

std::optional<DecodedPhoto> readWithQt(const PhotoHeader& header, QByteArray bytes,
                                       PhotoLevel level)
{
    // Raises Qt's memory limit for pictures, which is lower than largestAlone by default.
    static std::once_flag once;
    std::call_once(once, [] { QImageReader::setAllocationLimit(int(largestAlone >> 20)); });
    if (header.format == PhotoFormat::tiff)
        silenceTiff();
    const bool reducible = header.format == PhotoFormat::jpeg;
    if (header.format == PhotoFormat::png) {
        auto needed = neededChunks(std::move(bytes));
        if (!needed)
            return {};
        bytes = std::move(*needed);
    } else if (reducible) {
        bytes = withoutMetadata(paddedToLevel(header, std::move(bytes), level));
    }
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, readerName(header.format));
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(!reducible && header.format != PhotoFormat::webp);
    if (reducible && level != PhotoLevel::full) {
        const QSize announced = reader.size();
        reader.setScaledSize({std::max(1, announced.width() / int(level)),
                              std::max(1, announced.height() / int(level))});
    }
    QImage image = reader.read();
    if (image.isNull())
        return {};
    image = uprightFrom(std::move(image), orientationOf(header, bytes));
    const PhotoInfo info = reducible ? infoBeforeDecoding(header) : PhotoInfo{image.size(), false};
    return DecodedPhoto{info, inSrgb(std::move(image)), nullptr};
}

// A photo that is ready to be decoded: its bytes, and the pass for the memory that decoding takes.
struct OpenPhoto {
    PhotoHeader header;
    PhotoLevel level;
    DecodeGate::Pass pass;
    QByteArray bytes;
};

// Number of copies of the whole file in memory during decoding. The readers of WebP and HEIC make a
// second one; the others read a strip or a row at a time.
int copiesOfFile(PhotoFormat format)
{
    return format == PhotoFormat::webp || format == PhotoFormat::heic ? 2 : 1;
}

// Whether the header gives the upright size. For other formats, only decoding shows it.
bool isSizeInHeader(PhotoFormat format)
{
    return format == PhotoFormat::jpeg || format == PhotoFormat::png || format == PhotoFormat::bmp;
}

std::optional<OpenPhoto> openPhoto(const QString& path, const LevelChoice& wantedLevel)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return {};
    const auto header = readPhotoHeader(file);
    if (!header)
        return {};
    const PhotoLevel level = affordableLevel(*header, wantedLevel(infoBeforeDecoding(*header)));
    const qint64 fileBytes = file.size();
    const qint64 needed = fileBytes * copiesOfFile(header->format) + decodingBytes(*header, level);
    if (needed > largestAlone || !file.seek(0))
        return {};
    OpenPhoto photo{*header, level, gate().enter(needed), file.read(fileBytes)};
    if (header->format == PhotoFormat::jpeg) {
        constexpr qint64 mostWork = 5'000'000'000;    // pixels times scans
        const QSize size = header->size;
        if (qint64(size.width()) * size.height() * scanCount(photo.bytes) > mostWork)
            return {};
    }
    return photo;
}

QByteArray digestOf(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Blake2b_256);
}

std::optional<DecodedPhoto> decodeHeic(const PhotoHeader& header, const QByteArray& bytes)
{
    QImage image = readHeicPhoto(bytes, header.size);
    if (image.isNull())
        return {};
    return DecodedPhoto{{image.size(), false}, image, nullptr};
}

// Decodes the photo. Afterwards its pass counts only the bytes of the picture and becomes `share`.
std::optional<DecodedPhoto> decode(OpenPhoto photo)
{
    auto decoded = photo.header.format == PhotoFormat::heic
                       ? decodeHeic(photo.header, photo.bytes)
                       : readWithQt(photo.header, std::move(photo.bytes), photo.level);
    if (decoded) {
        auto share = std::make_shared<DecodeGate::Pass>(std::move(photo.pass));
        share->shrinkTo(decoded->image.sizeInBytes());
        decoded->share = std::move(share);
    }
    return decoded;
}

}    // namespace

QSize thumbnailSize(QSize photo)
{
    constexpr double shortSide = 320, longSide = 4 * shortSide;
    const int shorter = std::min(photo.width(), photo.height());
    const int longer = std::max(photo.width(), photo.height());
    if (shorter <= 0)
        return {};
    const double scale = std::min({1.0, shortSide / shorter, longSide / longer});
    return {std::max(1, qRound(photo.width() * scale)),
            std::max(1, qRound(photo.height() * scale))};
}

std::optional<QImage> decodePhoto(const QString& path, PhotoLevel level,
                                  const QByteArray& expectedDigest)
{
    auto decoded = decodePhoto(
        path, [level](const PhotoInfo&) { return level; }, expectedDigest);
    if (!decoded)
        return {};
    return std::move(decoded->image);
}

std::optional<DecodedPhoto> decodePhoto(const QString& path, const LevelChoice& level,
                                        const QByteArray& expectedDigest)
{
    auto photo = openPhoto(path, level);
    if (!photo || (!expectedDigest.isEmpty() && digestOf(photo->bytes) != expectedDigest))
        return {};
    return decode(std::move(*photo));
}

std::optional<PhotoInfo> readPhotoInfo(const QString& path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return {};
    const auto header = readPhotoHeader(file);
    return header ? std::optional(infoBeforeDecoding(*header)) : std::nullopt;
}

std::optional<AcceptedPhoto> identifyPhoto(const QString& path)
{
    auto photo = openPhoto(path, [](const PhotoInfo&) { return PhotoLevel::eighth; });
    if (!photo)
        return {};
    const QByteArray digest = digestOf(photo->bytes);
    if (isSizeInHeader(photo->header.format))
        return AcceptedPhoto{infoBeforeDecoding(photo->header), digest, {}};
    const auto decoded = decode(std::move(*photo));
    if (!decoded)
        return {};
    return AcceptedPhoto{decoded->info, digest, {}};
}

std::optional<AcceptedPhoto> acceptPhoto(const QString& path)
{
    auto photo = openPhoto(path, [](const PhotoInfo& info) {
        return coveringLevel(info.size, thumbnailSize(info.size));
    });
    if (!photo)
        return {};
    const QByteArray digest = digestOf(photo->bytes);
    auto decoded = decode(std::move(*photo));
    if (!decoded)
        return {};
    const QSize size = thumbnailSize(decoded->info.size);
    QImage thumbnail = decoded->image.size() == size ? std::move(decoded->image)
                                                     : areaAveraged(decoded->image, size);
    return AcceptedPhoto{decoded->info, digest, std::move(thumbnail)};
}
