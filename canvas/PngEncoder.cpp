#include "canvas/PngEncoder.h"

#include <QtEndian>

#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
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
constexpr int fastDeflate = 1, bestDeflate = 12;

// The row filters of PNG, with their numbers in the file.
enum class RowFilter : uchar { none, sub, up, average, paeth };
constexpr std::array rowFilters{RowFilter::none, RowFilter::sub, RowFilter::up, RowFilter::average,
                                RowFilter::paeth};

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

// Turns RGBA into RGB.
void dropOpacity(uchar* pixels, int width)
{
    for (int x = 1; x < width; ++x)
        std::memmove(pixels + x * 3, pixels + x * bytesPerPixel, 3);
}

using Short = std::int16_t;

Short distance(Short a, Short b)
{
    return Short(std::max(a, b) - std::min(a, b));
}

// Applies the Paeth filter, without branches and in 16 bits, so that the compiler can vectorize the
// loop. A zero pixel of `step` bytes precedes the bytes of `row` and `above`.
FOR_EACH_PROCESSOR void filterPaeth(const uchar* row, const uchar* above, uchar* out, int bytes,
                                    int step)
{
    for (int i = 0; i < bytes; ++i) {
        const Short left = row[i - step], up = above[i], corner = above[i - step];
        const Short toLeft = distance(up, corner), toUp = distance(left, corner);
        const Short toCorner = distance(Short(left + up), Short(2 * corner));
        const Short upOrCorner = toUp <= toCorner ? up : corner;
        const Short guess = toLeft <= std::min(toUp, toCorner) ? left : upOrCorner;
        out[i] = uchar(row[i] - guess);
    }
}

FOR_EACH_PROCESSOR void filterRow(RowFilter filter, const uchar* row, const uchar* above,
                                  uchar* out, int bytes, int step)
{
    switch (filter) {
    case RowFilter::none:
        std::copy_n(row, bytes, out);
        return;
    case RowFilter::sub:
        for (int i = 0; i < bytes; ++i)
            out[i] = uchar(row[i] - row[i - step]);
        return;
    case RowFilter::up:
        for (int i = 0; i < bytes; ++i)
            out[i] = uchar(row[i] - above[i]);
        return;
    case RowFilter::average:
        for (int i = 0; i < bytes; ++i)
            out[i] = uchar(row[i] - (row[i - step] + above[i]) / 2);
        return;
    case RowFilter::paeth:
        filterPaeth(row, above, out, bytes, step);
        return;
    }
}

// The sum of the filtered bytes, taken as signed: small sums compress well.
FOR_EACH_PROCESSOR int sumOf(const uchar* bytes, int count)
{
    int sum = 0;
    for (int i = 0; i < count; ++i)
        sum += std::min<int>(bytes[i], 256 - bytes[i]);
    return sum;
}

// The rows of an image as they stand in a PNG before deflating: each with its filter in front.
struct FilteredRows {
    std::unique_ptr<uchar[]> bytes;
    std::size_t size = 0;
};

// Writes the filter and the filtered row to `out`.
void putRow(RowFilter filter, const uchar* row, const uchar* above, uchar* out, int bytes, int step)
{
    *out = uchar(filter);
    filterRow(filter, row, above, out + 1, bytes, step);
}

// Tries all filters and writes the row with the smallest sum to `out`. `trial`: as large as a row.
void putSmallestRow(const uchar* row, const uchar* above, uchar* out, int bytes, int step,
                    uchar* trial)
{
    int smallest = std::numeric_limits<int>::max();
    for (const RowFilter filter : rowFilters) {
        putRow(filter, row, above, trial, bytes, step);
        if (const int sum = sumOf(trial + 1, bytes); sum < smallest) {
            smallest = sum;
            std::copy_n(trial, bytes + 1, out);
        }
    }
}

// `step`: bytes of a pixel; with 3, the opacity is left out. Without a `filter`, each row gets the
// one that suits it.
FilteredRows filteredRows(const QImage& pixels, int step, std::optional<RowFilter> filter)
{
    const bool opaque = pixels.format() == QImage::Format_RGB32;
    const int width = pixels.width(), stride = width * step;
    FilteredRows rows;
    rows.size = std::size_t(stride + 1) * std::size_t(pixels.height());
    rows.bytes = std::make_unique_for_overwrite<uchar[]>(rows.size);
    std::vector<uchar> row(std::size_t(width + 1) * bytesPerPixel, 0), above(row);
    std::vector<uchar> trial(std::size_t(stride) + 1);
    for (int y = 0; y < pixels.height(); ++y) {
        uchar* const bytes = row.data() + step;
        toRgba(reinterpret_cast<const QRgb*>(pixels.constScanLine(y)), bytes, width, opaque);
        if (step < bytesPerPixel)
            dropOpacity(bytes, width);
        uchar* const out = rows.bytes.get() + std::size_t(y) * std::size_t(stride + 1);
        if (filter)
            putRow(*filter, bytes, above.data() + step, out, stride, step);
        else
            putSmallestRow(bytes, above.data() + step, out, stride, step, trial.data());
        row.swap(above);
    }
    return rows;
}

QByteArray deflated(const FilteredRows& rows, int level)
{
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(level), &libdeflate_free_compressor);
    if (!compressor)
        return {};
    QByteArray data(qsizetype(libdeflate_zlib_compress_bound(compressor.get(), rows.size)),
                    Qt::Uninitialized);
    data.truncate(qsizetype(libdeflate_zlib_compress(compressor.get(), rows.bytes.get(), rows.size,
                                                     data.data(), std::size_t(data.size()))));
    return data;
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

QByteArray header(QSize size, int step)
{
    const char colors = step == bytesPerPixel ? 6 /* RGBA */ : 2 /* RGB */;
    char fields[13] = {0, 0, 0, 0, 0, 0, 0, 0, 8 /* bits a sample */, colors, 0, 0, 0};
    qToBigEndian(quint32(size.width()), fields);
    qToBigEndian(quint32(size.height()), fields + 4);
    return QByteArray(fields, sizeof fields);
}

// Empty if `data` is.
QByteArray pngOf(QSize size, int step, const QByteArray& data)
{
    if (data.isEmpty())
        return {};
    QByteArray png("\x89PNG\r\n\x1a\n", 8);
    png.reserve(data.size() + 64);
    appendChunk(png, "IHDR", header(size, step));
    appendChunk(png, "IDAT", data);
    appendChunk(png, "IEND", {});
    return png;
}

// In a format that toRgba() reads.
QImage readable(const QImage& image)
{
    return image.format() == QImage::Format_RGB32
               ? image
               : image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

}    // namespace

QByteArray encodePng(const QImage& image)
{
    if (image.isNull())
        return {};
    const FilteredRows rows = filteredRows(readable(image), bytesPerPixel, RowFilter::paeth);
    return pngOf(image.size(), bytesPerPixel, deflated(rows, fastDeflate));
}

QByteArray encodeSmallPng(const QImage& image)
{
    if (image.isNull() || image.format() != QImage::Format_RGB32)
        return {};
    constexpr int step = 3;
    return pngOf(image.size(), step,
                 deflated(filteredRows(image, step, std::nullopt), bestDeflate));
}
