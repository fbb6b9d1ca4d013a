#include "canvas/PhotoResampler.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

constexpr int weightBits = 14;
constexpr int unitWeight = 1 << weightBits;

// The Catmull-Rom kernel: the cubic of R. G. Keys (1981) with a = -0.5.
double kernel(double x)
{
    x = std::abs(x);
    if (x < 1)
        return (1.5 * x - 2.5) * x * x + 1;
    if (x < 2)
        return ((-0.5 * x + 2.5) * x - 4) * x + 2;
    return 0;
}

// For each target pixel of a range along one axis: which source pixels it sums, and their weights.
struct Taps {
    struct Pixel {
        int first;       // index of the first source pixel
        int count;       // number of source pixels; even, because they are summed in pairs
        int weightAt;    // index in `weights` of the first of `count` weights
    };
    std::vector<Pixel> pixels;
    std::vector<int16_t> weights;    // in 1/unitWeight; those of one pixel add up to unitWeight
    int sourceBegin = 0, sourceEnd = 0;
};

Taps tapsFor(int source, qint64 target, qint64 begin, qint64 end)
{
    const double ratio = double(source) / double(target);
    const double widening = std::max(ratio, 1.0);
    const double support = 2 * widening;
    Taps taps;
    taps.sourceBegin = source;
    std::vector<double> share;
    for (qint64 i = begin; i < end; ++i) {
        const double centre = (double(i) + 0.5) * ratio - 0.5;
        const int low = int(std::ceil(centre - support)), high = int(std::floor(centre + support));
        const int first = std::clamp(low, 0, source - 1), last = std::clamp(high, 0, source - 1);
        const int length = last - first + 1;
        share.assign(std::size_t(length), 0.0);
        double sum = 0;
        // Repeats the outermost source pixel beyond the edge.
        for (int j = low; j <= high; ++j) {
            const double weight = kernel((j - centre) / widening);
            share[std::size_t(std::clamp(j, first, last) - first)] += weight;
            sum += weight;
        }
        const int count = int(share.size()) + int(share.size()) % 2;
        taps.pixels.push_back({first, count, int(taps.weights.size())});
        int rest = unitWeight;
        for (const double weight : share) {
            const int fixed = int(std::lround(weight / sum * unitWeight));
            taps.weights.push_back(int16_t(fixed));
            rest -= fixed;
        }
        const auto mine = taps.weights.end() - qptrdiff(share.size());
        *std::max_element(mine, taps.weights.end()) += int16_t(rest);
        if (share.size() % 2 != 0)
            taps.weights.push_back(0);
        taps.sourceBegin = std::min(taps.sourceBegin, first);
        taps.sourceEnd = std::max(taps.sourceEnd, last + 1);
    }
    return taps;
}

uchar toByte(int sum)
{
    return uchar(std::clamp((sum + unitWeight / 2) >> weightBits, 0, 255));
}

#if defined(__SSE2__)

__m128i pairOfWeights(const int16_t* weights)
{
    int32_t pair;
    std::memcpy(&pair, weights, sizeof pair);
    return _mm_set1_epi32(pair);
}

__m128i rounded(__m128i sums)
{
    return _mm_srai_epi32(_mm_add_epi32(sums, _mm_set1_epi32(unitWeight / 2)), weightBits);
}

// Writes the weighted sum of byte b of all rows to out[b], for blocks of 16 bytes; returns how many
// bytes are done. The number of rows is even.
int sumRowsFast(const std::vector<const uchar*>& rows, const int16_t* weights, int bytes,
                uchar* out)
{
    const __m128i zero = _mm_setzero_si128();
    int b = 0;
    for (; b + 16 <= bytes; b += 16) {
        __m128i s0 = zero, s1 = zero, s2 = zero, s3 = zero;
        for (std::size_t t = 0; t < rows.size(); t += 2) {
            const __m128i w = pairOfWeights(weights + t);
            const __m128i p = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[t] + b));
            const __m128i q = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[t + 1] + b));
            const __m128i low = _mm_unpacklo_epi8(p, q), high = _mm_unpackhi_epi8(p, q);
            s0 = _mm_add_epi32(s0, _mm_madd_epi16(_mm_unpacklo_epi8(low, zero), w));
            s1 = _mm_add_epi32(s1, _mm_madd_epi16(_mm_unpackhi_epi8(low, zero), w));
            s2 = _mm_add_epi32(s2, _mm_madd_epi16(_mm_unpacklo_epi8(high, zero), w));
            s3 = _mm_add_epi32(s3, _mm_madd_epi16(_mm_unpackhi_epi8(high, zero), w));
        }
        const __m128i result = _mm_packus_epi16(_mm_packs_epi32(rounded(s0), rounded(s1)),
                                                _mm_packs_epi32(rounded(s2), rounded(s3)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + b), result);
    }
    return b;
}

// The weighted sum of `count` neighbouring pixels; `count` is even.
uint32_t sumPixels(const uchar* pixels, const int16_t* weights, int count)
{
    const __m128i zero = _mm_setzero_si128();
    __m128i sum = zero;
    for (int t = 0; t < count; t += 2) {
        const __m128i two = _mm_unpacklo_epi8(
            _mm_loadl_epi64(reinterpret_cast<const __m128i*>(pixels + t * 4)), zero);
        const __m128i pairs = _mm_unpacklo_epi16(two, _mm_srli_si128(two, 8));
        sum = _mm_add_epi32(sum, _mm_madd_epi16(pairs, pairOfWeights(weights + t)));
    }
    const __m128i words = _mm_packs_epi32(rounded(sum), zero);
    return uint32_t(_mm_cvtsi128_si32(_mm_packus_epi16(words, zero)));
}

#else

int sumRowsFast(const std::vector<const uchar*>&, const int16_t*, int, uchar*)
{
    return 0;
}

uint32_t sumPixels(const uchar* pixels, const int16_t* weights, int count)
{
    int sums[4] = {};
    for (int t = 0; t < count; ++t) {
        for (int c = 0; c < 4; ++c)
            sums[c] += weights[t] * pixels[t * 4 + c];
    }
    uchar bytes[4];
    std::transform(sums, sums + 4, bytes, toByte);
    uint32_t pixel;
    std::memcpy(&pixel, bytes, sizeof pixel);
    return pixel;
}

#endif

void sumRows(const std::vector<const uchar*>& rows, const int16_t* weights, int bytes, uchar* out)
{
    for (int b = sumRowsFast(rows, weights, bytes, out); b < bytes; ++b) {
        int sum = 0;
        for (std::size_t t = 0; t < rows.size(); ++t)
            sum += weights[t] * rows[t][b];
        out[b] = toByte(sum);
    }
}

// Limits red, green and blue to alpha, as premultiplied pixels require: at edges, the kernel may
// give larger values.
void limitToOpacity(QRgb* row, int width)
{
    for (int x = 0; x < width; ++x) {
        const int alpha = qAlpha(row[x]);
        row[x] = qRgba(std::min(qRed(row[x]), alpha), std::min(qGreen(row[x]), alpha),
                       std::min(qBlue(row[x]), alpha), alpha);
    }
}

}    // namespace

QImage resampled(const QImage& source, const PixelRect& place, QRect window)
{
    window = place.intersected(window);
    if (source.isNull() || window.isEmpty())
        return {};
    const bool opaque = source.format() == QImage::Format_RGB32;
    const QImage pixels =
        opaque ? source : source.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QImage result(window.size(), pixels.format());
    if (result.isNull())
        return {};

    const qint64 fromLeft = window.x() - place.x, fromTop = window.y() - place.y;
    const Taps columns = tapsFor(pixels.width(), place.width, fromLeft, fromLeft + window.width());
    const Taps lines = tapsFor(pixels.height(), place.height, fromTop, fromTop + window.height());
    const int left = columns.sourceBegin * 4;
    const int bytes = columns.sourceEnd * 4 - left;
    // `blended` has spare bytes at the end: sumPixels() takes pixels in pairs, and may read one
    // pixel beyond the last, with weight 0.
    std::vector<uchar> blended(std::size_t(bytes) + 8, 0);
    std::vector<const uchar*> rows;

    for (int y = 0; y < window.height(); ++y) {
        const Taps::Pixel& line = lines.pixels[std::size_t(y)];
        rows.clear();
        for (int t = 0; t < line.count; ++t)
            rows.push_back(pixels.constScanLine(std::min(line.first + t, pixels.height() - 1)) +
                           left);
        sumRows(rows, lines.weights.data() + line.weightAt, bytes, blended.data());

        auto* out = reinterpret_cast<QRgb*>(result.scanLine(y));
        for (int x = 0; x < window.width(); ++x) {
            const Taps::Pixel& column = columns.pixels[std::size_t(x)];
            out[x] = sumPixels(blended.data() + column.first * 4 - left,
                               columns.weights.data() + column.weightAt, column.count);
        }
        if (!opaque)
            limitToOpacity(out, window.width());
    }
    return result;
}
