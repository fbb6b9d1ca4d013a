#include "platform/photo/PhotoBytes.h"

#include <QByteArrayList>
#include <QtEndian>

#include <libdeflate.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace {

constexpr qint64 largestProfile = 4 << 20;

namespace Marker {
constexpr int firstFrame = 0xC0, firstRestart = 0xD0, startOfImage = 0xD8, endOfImage = 0xD9,
              startOfScan = 0xDA, app0 = 0xE0, app2 = 0xE2, app14 = 0xEE, app15 = 0xEF,
              comment = 0xFE;
}

struct Segment {
    int marker;
    qsizetype start, end;    // byte offsets; the segment of a scan ends before the compressed data
};

// Finds the next segment from `from` on. Skips stray bytes between segments, as libjpeg does. Also
// skips markers below firstFrame and does not read a length after them, as libjpeg does when it
// searches damaged data for a restart marker.
std::optional<Segment> nextSegment(const QByteArray& jpeg, qsizetype from)
{
    for (qsizetype at = jpeg.indexOf('\xFF', from); at >= 0 && at + 1 < jpeg.size();
         at = jpeg.indexOf('\xFF', at + 1)) {
        const int marker = uchar(jpeg[at + 1]);
        if (marker == Marker::endOfImage)
            return Segment{marker, at, at + 2};
        if (marker < Marker::firstFrame || marker == 0xFF ||
            (marker >= Marker::firstRestart && marker <= Marker::startOfImage))
            continue;
        if (at + 4 > jpeg.size())
            break;
        const qsizetype length = qFromBigEndian<quint16>(jpeg.constData() + at + 2);
        return Segment{marker, at, std::min(at + 2 + std::max<qsizetype>(length, 2), jpeg.size())};
    }
    return {};
}

bool isColourProfile(const QByteArray& jpeg, const Segment& segment)
{
    const QByteArrayView body(jpeg.constData() + segment.start + 4,
                              std::max<qsizetype>(0, segment.end - segment.start - 4));
    return segment.marker == Marker::app2 && body.startsWith("ICC_PROFILE");
}

// Whether a chunk stays small when inflated. Inflates a profile to find out, because libpng
// inflates it before any check of its contents.
bool isBounded(QByteArrayView name, QByteArrayView data)
{
    constexpr qsizetype longest = 1 << 20;
    if (name != "iCCP" || data.size() > longest)
        return data.size() <= longest;
    const qsizetype title = data.indexOf('\0');
    if (title < 0 || title + 2 > data.size())
        return false;
    // The title is followed by a zero byte and the compression method.
    const QByteArrayView compressed = data.sliced(title + 2);
    const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)>
        inflater(libdeflate_alloc_decompressor(), &libdeflate_free_decompressor);
    const auto profile = std::make_unique_for_overwrite<char[]>(largestProfile);
    std::size_t size = 0;
    return inflater && libdeflate_zlib_decompress(inflater.get(), compressed.data(),
                                                  std::size_t(compressed.size()), profile.get(),
                                                  largestProfile, &size) == LIBDEFLATE_SUCCESS;
}

}    // namespace

QByteArray paddedToLevel(const PhotoHeader& header, QByteArray jpeg, PhotoLevel level)
{
    const QSize padded = sizeAtLevel(header.size, level) * int(level);
    constexpr int largest = 0xFFFF;
    if (!header.paddable || padded == header.size || padded.width() > largest ||
        padded.height() > largest || header.frameSizeOffset + 4 > jpeg.size())
        return jpeg;
    char* const field = jpeg.data() + header.frameSizeOffset;
    qToBigEndian(quint16(padded.height()), field);
    qToBigEndian(quint16(padded.width()), field + 2);
    return jpeg;
}

QByteArray withoutMetadata(QByteArray jpeg)
{
    qint64 profile = 0;
    for (auto segment = nextSegment(jpeg, 2); segment && segment->marker != Marker::endOfImage;
         segment = nextSegment(jpeg, segment->end)) {
        const bool isNote = segment->marker == Marker::comment ||
                            (segment->marker > Marker::app0 && segment->marker < Marker::app15 &&
                             segment->marker != Marker::app14);
        if (isColourProfile(jpeg, *segment))
            profile += segment->end - segment->start;
        if (isNote && (profile > largestProfile || !isColourProfile(jpeg, *segment)))
            jpeg[segment->start + 1] = char(Marker::app15);
    }
    return jpeg;
}

int scanCount(const QByteArray& jpeg)
{
    int scans = 0;
    for (auto segment = nextSegment(jpeg, 2); segment && segment->marker != Marker::endOfImage;
         segment = nextSegment(jpeg, segment->end)) {
        if (segment->marker == Marker::startOfScan)
            ++scans;
    }
    return scans;
}

std::optional<QByteArray> neededChunks(QByteArray png)
{
    constexpr qsizetype around = 12;    // bytes of a chunk's length, name and checksum
    char* const bytes = png.data();
    qsizetype at = 8, kept = 8;
    bool hasData = false;
    // The optional chunks to keep, each once: removeOne() below makes the second chunk of a name
    // unwanted.
    QByteArrayList wanted{"tRNS", "iCCP", "sRGB", "gAMA", "cHRM", "sBIT", "bKGD", "pHYs", "eXIf"};
    while (png.size() - at >= around) {
        const qint64 length = qFromBigEndian<quint32>(bytes + at);
        if (length > png.size() - at - around)
            return {};
        const QByteArray name(bytes + at + 4, 4);
        const bool isCritical = !(name[0] & 0x20);
        const bool isSound = libdeflate_crc32(0, bytes + at + 4, std::size_t(length) + 4) ==
                             qFromBigEndian<quint32>(bytes + at + 8 + length);
        if (isCritical && !isSound)
            return {};
        hasData |= name == "IDAT";
        const QByteArrayView data(bytes + at + 8, length);
        if (isCritical || (wanted.removeOne(name) && isSound && isBounded(name, data))) {
            std::memmove(bytes + kept, bytes + at, std::size_t(around + length));
            kept += around + length;
        }
        at += around + length;
        if (name == "IEND") {
            png.truncate(kept);
            return hasData ? std::optional(std::move(png)) : std::nullopt;
        }
    }
    return {};
}
