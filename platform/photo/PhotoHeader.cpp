#include "platform/photo/PhotoHeader.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <limits>

namespace {

constexpr qint64 largestPhoto = 300'000'000;            // pixels
constexpr qint64 largestUnreduced = 64'000'000;         // pixels
constexpr qint64 largestPicture = qint64(256) << 20;    // bytes

qint64 pixels(QSize size)
{
    return qint64(size.width()) * size.height();
}

QByteArray bytesAt(QIODevice& file, qint64 offset, qint64 count)
{
    if (offset < 0 || !file.seek(offset))
        return {};
    const QByteArray bytes = file.read(count);
    return bytes.size() == count ? bytes : QByteArray();
}

template <typename T>
T big(const QByteArray& bytes, qsizetype offset)
{
    return qFromBigEndian<T>(bytes.constData() + offset);
}

template <typename T>
T little(const QByteArray& bytes, qsizetype offset)
{
    return qFromLittleEndian<T>(bytes.constData() + offset);
}

template <typename T>
T number(const QByteArray& bytes, qsizetype offset, bool isBigEndian)
{
    return isBigEndian ? big<T>(bytes, offset) : little<T>(bytes, offset);
}

// A size from 32-bit fields of a file; invalid if a side is longer than that of any photo.
QSize sizeFrom(quint32 width, quint32 height)
{
    constexpr quint32 largest = 1 << 24;
    return width > largest || height > largest ? QSize() : QSize(int(width), int(height));
}

bool readJpegFrame(const QByteArray& frame, qint64 offset, PhotoHeader& header)
{
    const int components = uchar(frame[5]);
    if (components < 1 || components > 4 || frame.size() < 6 + 3 * components)
        return false;
    header.size = QSize(big<quint16>(frame, 3), big<quint16>(frame, 1));
    header.frameSizeOffset = offset + 1;
    header.workingBytes = pixels(header.size) * 2 * components;
    header.bytesPerPixel = components == 1 ? 1 : 4;

    // If the sampling factor of a component does not divide the largest one (as 2 and 3), a padded
    // size could require more blocks than the file contains, so the size must not be padded.
    const auto factors = [&](int i) { return uchar(frame[7 + 3 * i]); };
    int largestAcross = 1, largestDown = 1;
    for (int i = 0; i < components; ++i) {
        largestAcross = std::max(largestAcross, factors(i) >> 4);
        largestDown = std::max(largestDown, factors(i) & 15);
    }
    header.paddable = true;
    for (int i = 0; i < components; ++i) {
        const int across = factors(i) >> 4, down = factors(i) & 15;
        if (!across || !down || largestAcross % across || largestDown % down)
            header.paddable = false;
    }
    return true;
}

std::optional<PhotoHeader> readJpeg(QIODevice& file)
{
    constexpr int mostSegments = 10'000;
    constexpr qint64 longestHead = 24'000'000;    // bytes before the first scan
    PhotoHeader header;
    qint64 at = 2;
    int frameComponents = 0;
    bool hasExif = false;
    for (int segment = 0; segment < mostSegments; ++segment) {
        // Skips stray bytes before a marker, as libjpeg does.
        if (at > longestHead || !file.seek(at))
            return {};
        const QByteArray ahead = file.read(4096);
        qsizetype i = 0;
        while (i + 1 < ahead.size() &&
               !(uchar(ahead[i]) == 0xFF && uchar(ahead[i + 1]) != 0xFF && ahead[i + 1] != 0))
            ++i;
        if (i + 1 >= ahead.size()) {
            if (ahead.size() < 4096)
                return {};
            at += i;
            continue;
        }
        const int marker = uchar(ahead[i + 1]);
        at += i + 2;
        if (marker == 0xD9)
            return {};
        if (marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8))
            continue;
        const QByteArray lengthBytes = bytesAt(file, at, 2);
        if (lengthBytes.isEmpty())
            return {};
        const int length = big<quint16>(lengthBytes, 0);
        if (length < 2)
            return {};
        const bool frame =
            marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (frame) {
            const QByteArray body = bytesAt(file, at + 2, length - 2);
            if (frameComponents || body.size() < 6 || !readJpegFrame(body, at + 2, header))
                return {};
            frameComponents = uchar(body[5]);
            const bool progressive = (marker & 3) == 2;
            if (progressive)
                frameComponents = 5;    // a progressive JPEG never has all its data in one scan
        } else if (marker == 0xDA) {
            const QByteArray body = bytesAt(file, at + 2, 1);
            if (body.isEmpty() || !frameComponents)
                return {};
            if (uchar(body[0]) >= frameComponents)
                header.workingBytes = 0;    // all in one scan: the codec stores no coefficients
            return header;
        } else if (marker == 0xE1 && !hasExif) {
            const QByteArray body = bytesAt(file, at + 2, length - 2);
            hasExif = body.startsWith("Exif");
            if (hasExif)
                header.orientation = exifOrientation(body);
        }
        at += length;
    }
    return {};
}

std::optional<PhotoHeader> readPng(QIODevice& file)
{
    const QByteArray bytes = bytesAt(file, 0, 33);
    if (bytes.isEmpty() || bytes.mid(12, 4) != "IHDR")
        return {};
    const int depth = uchar(bytes[24]);
    if (depth < 1 || depth > 16 || (depth & (depth - 1)))
        return {};
    return PhotoHeader{.format = PhotoFormat::png,
                       .size = sizeFrom(big<quint32>(bytes, 16), big<quint32>(bytes, 20)),
                       .bytesPerPixel = depth == 16 ? 8 : 4};
}

// The number in a TIFF directory entry; 0 for types other than unsigned integers.
quint64 tiffNumber(const QByteArray& entry, bool isBigEndian, qsizetype valueOffset)
{
    switch (number<quint16>(entry, 2, isBigEndian)) {
    case 1:
        return number<quint8>(entry, valueOffset, isBigEndian);
    case 3:
        return number<quint16>(entry, valueOffset, isBigEndian);
    case 4:
        return number<quint32>(entry, valueOffset, isBigEndian);
    case 16:
        return valueOffset == 12 ? number<quint64>(entry, valueOffset, isBigEndian) : 0;
    }
    return 0;
}

// Byte order of a TIFF, and the lengths of its fields.
struct TiffLayout {
    bool isBigEndian = false;
    bool isBig = false;    // BigTIFF: 64-bit offsets

    int countLength() const { return isBig ? 8 : 2; }
    int entryLength() const { return isBig ? 20 : 12; }
    int valueOffset() const { return isBig ? 12 : 8; }
    int inlineShorts() const { return isBig ? 4 : 2; }    // 16-bit values that fit into an entry
    // Reads an offset, or a count of values.
    quint64 longNumber(const QByteArray& bytes, qsizetype offset) const
    {
        return isBig ? number<quint64>(bytes, offset, isBigEndian)
                     : quint64(number<quint32>(bytes, offset, isBigEndian));
    }
};

struct TiffTags {
    quint64 width = 0, height = 0, tileWidth = 0, tileHeight = 0, bits = 1, samples = 1;
    quint64 rowsOfStrip = std::numeric_limits<quint64>::max();

    // Size of the buffer that libtiff allocates for one strip or one tile. A tile may be larger
    // than the photo.
    quint64 bufferPixels() const
    {
        return std::max(tileWidth * tileHeight, width * std::min(rowsOfStrip, height));
    }
    bool isSane() const
    {
        constexpr quint64 longest = 1 << 24, mostSamples = 8, mostBits = 64;
        return width <= longest && height <= longest && tileWidth <= longest &&
               tileHeight <= longest && tileWidth * tileHeight <= quint64(largestUnreduced) &&
               samples <= mostSamples && bits <= mostBits;
    }
};

constexpr quint16 bitsTag = 258;
constexpr std::array tiffTags{
    std::pair(quint16(256), &TiffTags::width),
    std::pair(quint16(257), &TiffTags::height),
    std::pair(bitsTag, &TiffTags::bits),
    std::pair(quint16(277), &TiffTags::samples),
    std::pair(quint16(278), &TiffTags::rowsOfStrip),
    std::pair(quint16(322), &TiffTags::tileWidth),
    std::pair(quint16(323), &TiffTags::tileHeight),
};

// `entries` contains the bytes of a directory.
TiffTags readTiffTags(QIODevice& file, const QByteArray& entries, const TiffLayout& layout)
{
    TiffTags tags;
    for (qsizetype at = 0; at < entries.size(); at += layout.entryLength()) {
        const QByteArray entry = entries.mid(at, layout.entryLength());
        const auto tag = number<quint16>(entry, 0, layout.isBigEndian);
        const auto known =
            std::ranges::find(tiffTags, tag, [](const auto& row) { return row.first; });
        if (known == tiffTags.end())
            continue;
        tags.*known->second = tiffNumber(entry, layout.isBigEndian, layout.valueOffset());
        // If the bit depths of the channels do not fit into the entry, the entry contains their
        // position in the file. The first of them counts for all channels.
        if (tag == bitsTag && layout.longNumber(entry, 4) > quint64(layout.inlineShorts())) {
            const QByteArray first =
                bytesAt(file, qint64(layout.longNumber(entry, layout.valueOffset())), 2);
            tags.bits = first.isEmpty() ? 64 : number<quint16>(first, 0, layout.isBigEndian);
        }
    }
    return tags;
}

std::optional<PhotoHeader> readTiff(QIODevice& file)
{
    const QByteArray start = bytesAt(file, 0, 16);
    if (start.isEmpty())
        return {};
    TiffLayout layout{.isBigEndian = start[0] == 'M'};
    layout.isBig = number<quint16>(start, 2, layout.isBigEndian) == 43;
    const qint64 directory = qint64(layout.longNumber(start, layout.isBig ? 8 : 4));
    const QByteArray countBytes = bytesAt(file, directory, layout.countLength());
    if (countBytes.isEmpty())
        return {};
    const quint64 entryCount = layout.isBig
                                   ? number<quint64>(countBytes, 0, layout.isBigEndian)
                                   : quint64(number<quint16>(countBytes, 0, layout.isBigEndian));
    if (entryCount > 4096)
        return {};
    const QByteArray entries =
        bytesAt(file, directory + layout.countLength(), qint64(entryCount) * layout.entryLength());
    const TiffTags tags = readTiffTags(file, entries, layout);
    if (!tags.isSane())
        return {};
    return PhotoHeader{.format = PhotoFormat::tiff,
                       .size = QSize(int(tags.width), int(tags.height)),
                       .bytesPerPixel = tags.bits > 16  ? 16
                                        : tags.bits > 8 ? 8
                                                        : 4,
                       .workingBytes = qint64(tags.bufferPixels() * tags.samples * tags.bits / 8)};
}

std::optional<PhotoHeader> readWebp(QIODevice& file)
{
    const QByteArray bytes = bytesAt(file, 0, 30);
    if (bytes.isEmpty())
        return {};
    PhotoHeader header{.format = PhotoFormat::webp, .size = {}};
    const auto three = [&](int at) { return 1 + int(little<quint32>(bytes, at) & 0xFFFFFF); };
    if (const QByteArray chunk = bytes.mid(12, 4); chunk == "VP8X") {
        header.size = QSize(three(24), 1 + int(little<quint32>(bytes, 26) >> 8));
    } else if (chunk == "VP8L") {
        const quint32 packed = little<quint32>(bytes, 21);
        header.size = QSize(1 + int(packed & 0x3FFF), 1 + int((packed >> 14) & 0x3FFF));
    } else if (chunk == "VP8 ") {
        header.size =
            QSize(little<quint16>(bytes, 26) & 0x3FFF, little<quint16>(bytes, 28) & 0x3FFF);
    }
    return header;
}

// The bytes from the top-level box `meta` on, at most 1 MB. That box may come after the coded
// pictures. Empty if there is none.
QByteArray heicProperties(QIODevice& file)
{
    constexpr qint64 longestProperties = 1 << 20;
    constexpr int mostBoxes = 1000;
    qint64 at = 0;
    for (int i = 0; i < mostBoxes; ++i) {
        const QByteArray start = bytesAt(file, at, 8);
        if (start.isEmpty())
            return {};
        if (start.mid(4) == "meta")
            return file.seek(at) ? file.read(longestProperties) : QByteArray();
        // A size of 1 means that a 64-bit size follows the type; 0 means that the box is the rest
        // of the file.
        quint64 size = big<quint32>(start, 0);
        if (size == 1) {
            const QByteArray large = bytesAt(file, at + 8, 8);
            size = large.isEmpty() ? 0 : big<quint64>(large, 0);
        }
        if (size < 8 || size > quint64(file.size() - at))
            return {};
        at += qint64(size);
    }
    return {};
}

// Takes the largest of the picture sizes (`ispe`) that the container announces: that of the photo
// or of one of its tiles.
std::optional<PhotoHeader> readHeic(QIODevice& file)
{
    const QByteArray bytes = heicProperties(file);
    PhotoHeader header{.format = PhotoFormat::heic, .size = {}};
    const QByteArray name("ispe");
    for (qsizetype at = bytes.indexOf(name); at >= 0; at = bytes.indexOf(name, at + 4)) {
        if (at + 16 > bytes.size())
            break;
        const QSize size = sizeFrom(big<quint32>(bytes, at + 8), big<quint32>(bytes, at + 12));
        if (pixels(size) > pixels(header.size))
            header.size = size;
    }
    return header;
}

std::optional<PhotoHeader> readBmp(QIODevice& file)
{
    const QByteArray bytes = bytesAt(file, 0, 30);
    if (bytes.isEmpty())
        return {};
    PhotoHeader header{.format = PhotoFormat::bmp, .size = {}};
    if (little<quint32>(bytes, 14) == 12) {
        header.size = QSize(little<quint16>(bytes, 18), little<quint16>(bytes, 20));
    } else {
        const qint32 height = little<qint32>(bytes, 22);    // negative if the top row comes first
        header.size = sizeFrom(little<quint32>(bytes, 18),
                               height < 0 ? 0U - quint32(height) : quint32(height));
    }
    return header;
}

std::optional<PhotoHeader> readGif(QIODevice& file)
{
    const QByteArray bytes = bytesAt(file, 0, 10);
    if (bytes.isEmpty())
        return {};
    return PhotoHeader{.format = PhotoFormat::gif,
                       .size = QSize(little<quint16>(bytes, 6), little<quint16>(bytes, 8))};
}

bool isHeicBrand(const QByteArray& brand)
{
    static const QByteArrayList brands{"heic", "heix", "heim", "heis",
                                       "hevc", "hevx", "mif1", "msf1"};
    return brands.contains(brand);
}

std::optional<PhotoHeader> readByContent(QIODevice& file)
{
    if (!file.seek(0))
        return {};
    const QByteArray start = file.read(16);
    if (start.startsWith("\xFF\xD8\xFF"))
        return readJpeg(file);
    if (start.startsWith("\x89PNG\r\n\x1A\n"))
        return readPng(file);
    if (start.startsWith(QByteArray("II*\0", 4)) || start.startsWith(QByteArray("MM\0*", 4)) ||
        start.startsWith(QByteArray("II+\0", 4)) || start.startsWith(QByteArray("MM\0+", 4)))
        return readTiff(file);
    if (start.startsWith("RIFF") && start.mid(8, 4) == "WEBP")
        return readWebp(file);
    if (start.mid(4, 4) == "ftyp" && isHeicBrand(start.mid(8, 4)))
        return readHeic(file);
    if (start.startsWith("GIF87a") || start.startsWith("GIF89a"))
        return readGif(file);
    if (start.startsWith("BM"))
        return readBmp(file);
    return {};
}

}    // namespace

std::optional<PhotoHeader> readPhotoHeader(QIODevice& file)
{
    const auto header = readByContent(file);
    if (!header || header->size.isEmpty() || pixels(header->size) > largestPhoto)
        return {};
    if (header->format == PhotoFormat::jpeg)
        return header;
    return pixels(header->size) <= largestUnreduced ? header : std::nullopt;
}

int exifOrientation(QByteArray exif)
{
    constexpr qsizetype nameLength = 6;    // "Exif" and two zeros, which a WebP seldom has
    if (exif.startsWith("Exif"))
        exif.remove(0, nameLength);
    const bool isBigEndian = exif.startsWith("MM");
    if (exif.size() < 8 || (!isBigEndian && !exif.startsWith("II")))
        return 1;
    constexpr qsizetype entryLength = 12;
    const qint64 directory = number<quint32>(exif, 4, isBigEndian);
    if (directory + 2 > exif.size())
        return 1;
    const int entries = number<quint16>(exif, directory, isBigEndian);
    for (int i = 0; i < entries; ++i) {
        const QByteArray entry = exif.mid(directory + 2 + entryLength * i, entryLength);
        if (entry.size() < entryLength)
            break;
        if (number<quint16>(entry, 0, isBigEndian) == 0x0112) {
            const auto value = tiffNumber(entry, isBigEndian, 8);
            return value >= 1 && value <= 8 ? int(value) : 1;
        }
    }
    return 1;
}

PhotoLevel affordableLevel(const PhotoHeader& header, PhotoLevel wanted)
{
    if (header.format != PhotoFormat::jpeg)
        return PhotoLevel::full;
    PhotoLevel level = wanted;
    while (level != PhotoLevel::eighth &&
           pixels(sizeAtLevel(header.size, level)) * 4 > largestPicture)
        level = PhotoLevel(int(level) * 2);
    return level;
}

qint64 decodingBytes(const PhotoHeader& header, PhotoLevel level)
{
    // Counts two pictures: that of the codec, and a copy with 32 bits per pixel that is converted
    // to sRGB or rotated.
    const qint64 decoded = pixels(sizeAtLevel(header.size, level));
    return header.workingBytes + decoded * (header.bytesPerPixel + 4);
}
