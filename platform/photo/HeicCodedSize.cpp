#include "platform/photo/HeicCodedSize.h"

#include <algorithm>
#include <limits>

namespace {

class BitReader {
public:
    explicit BitReader(QByteArray bytes) : m_bytes(std::move(bytes)) {}

    // Reads `count` bits, at most 32; after the end of the bytes, zeros.
    quint32 bits(int count)
    {
        quint32 value = 0;
        for (; count > 0; --count, ++m_at) {
            const qsizetype byte = m_at / 8;
            const quint32 bit =
                byte < m_bytes.size() ? uchar(m_bytes[byte]) >> (7 - m_at % 8) & 1U : 0U;
            value = value << 1 | bit;
        }
        return value;
    }
    void skip(qsizetype count) { m_at += count; }

    // Reads an exponential-Golomb code: n zeros, a one, then n bits.
    quint32 number()
    {
        constexpr int most = 31;
        int zeros = 0;
        while (zeros < most && bits(1) == 0)
            ++zeros;
        return (1U << zeros) - 1 + bits(zeros);
    }

private:
    QByteArray m_bytes;
    qsizetype m_at = 0;
};

// Returns width times height from a sequence parameter set. `unit` begins with a header of two
// bytes.
qint64 codedPixels(QByteArray unit)
{
    // Removes the 3 that the encoder puts after two zero bytes, so that they do not look like the
    // start of a unit.
    BitReader reader(unit.replace(QByteArray("\0\0\3", 3), QByteArray("\0\0", 2)));
    constexpr int unitHeader = 16, profileLength = 88, levelLength = 8;
    reader.skip(unitHeader + 4);
    const int layers = int(reader.bits(3));    // sub-layers above the base
    reader.skip(1 + profileLength + levelLength);
    qsizetype layerBits = 0;
    for (int i = 0; i < layers; ++i) {
        if (reader.bits(1))
            layerBits += profileLength;
        if (reader.bits(1))
            layerBits += levelLength;
    }
    if (layers > 0)
        reader.skip(qsizetype(2) * (8 - layers) + layerBits);
    reader.number();    // skips the id of the parameter set
    constexpr quint32 fullChroma = 3;
    if (reader.number() == fullChroma)
        reader.skip(1);
    constexpr quint32 longest = 1 << 24;
    const qint64 width = std::min(reader.number(), longest);
    const qint64 height = std::min(reader.number(), longest);
    return width * height;
}

qint64 largestIn(const QByteArray& configuration)
{
    constexpr int parameterSet = 33;
    qsizetype at = 22;    // offset of the number of arrays, after profile, level and depths
    const auto next = [&](int bytes) {
        quint32 value = 0;
        for (; bytes > 0; --bytes, ++at)
            value = value << 8 | (at < configuration.size() ? uchar(configuration[at]) : 0U);
        return int(value);
    };
    qint64 largest = 0;
    for (int arrays = next(1); arrays > 0 && at < configuration.size(); --arrays) {
        const int kind = next(1) & 63;
        for (int units = next(2); units > 0 && at < configuration.size(); --units) {
            const int length = next(2);
            if (kind == parameterSet)
                largest = std::max(largest, codedPixels(configuration.mid(at, length)));
            at += length;
        }
    }
    return largest;
}

}    // namespace

qint64 largestCodedPicture(const QByteArray& heic)
{
    constexpr qsizetype longestConfiguration = 1 << 16;
    constexpr int mostConfigurations = 100;
    const QByteArray name("hvcC");
    qint64 largest = 0;
    int configurations = 0;
    for (qsizetype at = heic.indexOf(name); at >= 0; at = heic.indexOf(name, at + 4)) {
        if (++configurations > mostConfigurations)
            return std::numeric_limits<qint64>::max();
        largest = std::max(largest, largestIn(heic.mid(at + 4, longestConfiguration)));
    }
    return largest;
}
