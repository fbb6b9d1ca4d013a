#include "platform/PhotoHeader.h"

#include <QtEndian>

#include <libdeflate.h>

#include <algorithm>

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

// From 32-bit fields of a file; what does not fit into an int is no size of ours.
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
    header.coefficientBytes = pixels(header.size) * 2 * components;
    header.bytesPerPixel = components == 1 ? 1 : 4;

    // Odd ratios of sampling (2 of 3) are the one case where a larger picture could have more
    // blocks.
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
    PhotoHeader header;
    qint64 at = 2;
    int frameComponents = 0;
    for (int segment = 0; segment < mostSegments; ++segment) {
        // Stray bytes before a marker are passed over, as libjpeg does.
        if (!file.seek(at))
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
                frameComponents = 5;    // more than any scan holds
        } else if (marker == 0xDA) {
            const QByteArray body = bytesAt(file, at + 2, 1);
            if (body.isEmpty() || !frameComponents)
                return {};
            if (uchar(body[0]) >= frameComponents)
                header.coefficientBytes = 0;    // everything in one scan: nothing is held
            return header;
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

// One number of a TIFF directory entry; 0 for types that hold no count.
quint64 tiffNumber(const QByteArray& entry, bool bigEndian, qsizetype valueOffset)
{
    const auto number = [&]<typename T>(T) {
        return quint64(bigEndian ? big<T>(entry, valueOffset) : little<T>(entry, valueOffset));
    };
    switch (bigEndian ? big<quint16>(entry, 2) : little<quint16>(entry, 2)) {
    case 1:
        return number(quint8());
    case 3:
        return number(quint16());
    case 4:
        return number(quint32());
    case 16:
        return valueOffset == 12 ? number(quint64()) : 0;
    }
    return 0;
}

std::optional<PhotoHeader> readTiff(QIODevice& file)
{
    const QByteArray start = bytesAt(file, 0, 16);
    if (start.isEmpty())
        return {};
    const bool bigEndian = start[0] == 'M';
    const auto number = [&]<typename T>(const QByteArray& bytes, qsizetype offset, T) {
        return bigEndian ? big<T>(bytes, offset) : little<T>(bytes, offset);
    };
    const bool wide = number(start, 2, quint16()) == 43;    // BigTIFF: 64-bit offsets
    const int countLength = wide ? 8 : 2, entryLength = wide ? 20 : 12;
    const qint64 directory =
        wide ? qint64(number(start, 8, quint64())) : qint64(number(start, 4, quint32()));
    const QByteArray countBytes = bytesAt(file, directory, countLength);
    if (countBytes.isEmpty())
        return {};
    const quint64 entryCount =
        wide ? number(countBytes, 0, quint64()) : quint64(number(countBytes, 0, quint16()));
    if (entryCount > 4096)
        return {};
    const QByteArray entries =
        bytesAt(file, directory + countLength, qint64(entryCount) * entryLength);
    quint64 width = 0, height = 0, tileWidth = 0, tileHeight = 0;
    int bits = 1, samples = 1;
    for (qsizetype at = 0; at < entries.size(); at += entryLength) {
        const QByteArray entry = entries.mid(at, entryLength);
        const quint64 value = tiffNumber(entry, bigEndian, wide ? 12 : 8);
        switch (number(entry, 0, quint16())) {
        case 256:
            width = value;
            break;
        case 257:
            height = value;
            break;
        case 258:
            bits = int(std::min<quint64>(value, 64));
            // Three depths and more lie elsewhere in the file; they are alike.
            if (!wide && number(entry, 4, quint32()) > 2) {
                const QByteArray first = bytesAt(file, number(entry, 8, quint32()), 2);
                bits = first.isEmpty() ? 64 : number(first, 0, quint16());
            }
            break;
        case 277:
            samples = int(std::min<quint64>(value, 64));
            break;
        case 322:
            tileWidth = value;
            break;
        case 323:
            tileHeight = value;
            break;
        }
    }
    // A tile is one buffer, whatever the size of the photo.
    constexpr quint64 longest = 1 << 24;
    if (width > longest || height > longest || tileWidth > longest || tileHeight > longest ||
        qint64(tileWidth * tileHeight) > largestUnreduced)
        return {};
    return PhotoHeader{.format = PhotoFormat::tiff,
                       .size = QSize(int(width), int(height)),
                       .bytesPerPixel = bits > 16  ? 16
                                        : bits > 8 ? 8
                                                   : std::max(4, samples)};
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

// The largest picture the properties of the container announce: the photo, or a tile of it.
std::optional<PhotoHeader> readHeic(QIODevice& file)
{
    constexpr qint64 longestProperties = 1 << 20;
    if (!file.seek(0))
        return {};
    const QByteArray bytes = file.read(longestProperties);
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
        const qint32 height = little<qint32>(bytes, 22);    // negative: the rows run downwards
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
    // The codec's picture and one more: of 32 bits, converted to sRGB, or turned.
    const qint64 decoded = pixels(sizeAtLevel(header.size, level));
    return header.coefficientBytes + decoded * (header.bytesPerPixel + 4);
}

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

bool hasSoundChunks(const QByteArray& png)
{
    constexpr qsizetype around = 12;    // length, name, checksum
    qsizetype at = 8;
    bool data = false;
    while (png.size() - at >= around) {
        const qint64 length = big<quint32>(png, at);
        if (length > png.size() - at - around)
            return false;
        const QByteArrayView name(png.constData() + at + 4, 4);
        const bool critical = !(name[0] & 0x20);
        const auto sum = libdeflate_crc32(0, name.data(), std::size_t(length) + 4);
        if (critical && sum != big<quint32>(png, at + 8 + length))
            return false;
        data |= name == "IDAT";
        if (name == "IEND")
            return data;
        at += around + length;
    }
    return false;
}

int scanCount(const QByteArray& jpeg)
{
    // Compressed data never holds this pair of bytes.
    return int(jpeg.count(QByteArrayView("\xFF\xDA", 2)));
}
