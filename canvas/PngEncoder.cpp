#include "canvas/PngEncoder.h"

#include <QtEndian>

#include <libdeflate.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

namespace {

// Compiles a function twice and chooses at the program's start: for processors with AVX2, and for
// all others. Sanitizers cannot instrument a function that is chosen so early.
#if defined(__x86_64__) && defined(__linux__) && !defined(__SANITIZE_ADDRESS__)
#define FOR_EACH_PROCESSOR __attribute__((target_clones("avx2", "default")))
#else
#define FOR_EACH_PROCESSOR
#endif

constexpr int bytesPerPixel = 4;
constexpr uchar paethFilter = 4;
constexpr int deflateLevel = 1;

// Converts a row of RGB32 or ARGB32_Premultiplied to RGBA bytes that are not premultiplied.
FOR_EACH_PROCESSOR void toRgba(const QRgb* from, uchar* to, int width, bool opaque)
{
    QRgb common = 0xffffffff;
    for (int x = 0; x < width; ++x)
        common &= from[x];
    if (opaque || qAlpha(common) == 255) {
        for (int x = 0; x < width; ++x) {
            const QRgb pixel = from[x];
            // The bytes in memory are red, green, blue, 255.
            const uint32_t swapped = qToLittleEndian(uint32_t(
                0xff000000u | (pixel & 0xff00u) | (pixel & 0xff) << 16 | (pixel >> 16 & 0xff)));
            std::memcpy(to + x * bytesPerPixel, &swapped, bytesPerPixel);
        }
        return;
    }
    for (int x = 0; x < width; ++x) {
        const QRgb pixel = qUnpremultiply(from[x]);
        const uchar rgba[] = {uchar(qRed(pixel)), uchar(qGreen(pixel)), uchar(qBlue(pixel)),
                              uchar(qAlpha(pixel))};
        std::memcpy(to + x * bytesPerPixel, rgba, bytesPerPixel);
    }
}

using Short = std::int16_t;

Short distance(Short a, Short b)
{
    return Short(std::max(a, b) - std::min(a, b));
}

// Applies the Paeth filter, without branches and in 16 bits, so that the compiler can vectorize the
// loop. A zero pixel precedes the bytes of `row` and `above`.
FOR_EACH_PROCESSOR void filterRow(const uchar* row, const uchar* above, uchar* out, int bytes)
{
    for (int i = 0; i < bytes; ++i) {
        const Short left = row[i - bytesPerPixel], up = above[i], corner = above[i - bytesPerPixel];
        const Short toLeft = distance(up, corner), toUp = distance(left, corner);
        const Short toCorner = distance(Short(left + up), Short(2 * corner));
        const Short upOrCorner = toUp <= toCorner ? up : corner;
        const Short guess = toLeft <= std::min(toUp, toCorner) ? left : upOrCorner;
        out[i] = uchar(row[i] - guess);
    }
}

void appendChunk(QByteArray& png, const char* type, QByteArrayView data)
{
    const quint32 length = qToBigEndian(quint32(data.size()));
    png.append(reinterpret_cast<const char*>(&length), 4);
    const auto start = png.size();
    png.append(type, 4).append(data);
    const quint32 checksum =
        qToBigEndian(libdeflate_crc32(0, png.constData() + start, std::size_t(png.size() - start)));
    png.append(reinterpret_cast<const char*>(&checksum), 4);
}

QByteArray header(QSize size)
{
    char fields[13] = {0, 0, 0, 0, 0, 0, 0, 0, 8 /* bits a sample */, 6 /* RGBA */, 0, 0, 0};
    qToBigEndian(quint32(size.width()), fields);
    qToBigEndian(quint32(size.height()), fields + 4);
    return QByteArray(fields, sizeof fields);
}

}    // namespace

QByteArray encodePng(const QImage& image)
{
    if (image.isNull())
        return {};
    const bool opaque = image.format() == QImage::Format_RGB32;
    const QImage pixels =
        opaque ? image : image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const int stride = image.width() * bytesPerPixel;
    const std::size_t size = std::size_t(stride + 1) * std::size_t(image.height());
    const auto filtered = std::make_unique_for_overwrite<uchar[]>(size);
    std::vector<uchar> row(std::size_t(stride + bytesPerPixel), 0), above(row);
    for (int y = 0; y < image.height(); ++y) {
        toRgba(reinterpret_cast<const QRgb*>(pixels.constScanLine(y)), row.data() + bytesPerPixel,
               image.width(), opaque);
        uchar* out = filtered.get() + std::size_t(y) * std::size_t(stride + 1);
        *out = paethFilter;
        filterRow(row.data() + bytesPerPixel, above.data() + bytesPerPixel, out + 1, stride);
        row.swap(above);
    }

    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(deflateLevel), &libdeflate_free_compressor);
    if (!compressor)
        return {};
    QByteArray data(qsizetype(libdeflate_zlib_compress_bound(compressor.get(), size)),
                    Qt::Uninitialized);
    data.truncate(qsizetype(libdeflate_zlib_compress(compressor.get(), filtered.get(), size,
                                                     data.data(), std::size_t(data.size()))));
    if (data.isEmpty())
        return {};
    QByteArray png("\x89PNG\r\n\x1a\n", 8);
    png.reserve(data.size() + 64);
    appendChunk(png, "IHDR", header(image.size()));
    appendChunk(png, "IDAT", data);
    appendChunk(png, "IEND", {});
    return png;
}
