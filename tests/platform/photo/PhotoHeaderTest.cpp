#include "platform/photo/PhotoHeader.h"
#include "platform/Memory.h"
#include "tests/platform/photo/PhotoSamples.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

std::optional<PhotoHeader> headerOf(QByteArray bytes)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return readPhotoHeader(buffer);
}

}    // namespace

TEST(PhotoHeader, readsEveryFormatFromItsBytes)
{
    const struct {
        const char* writer;
        PhotoFormat format;
    } rows[]{{"jpeg", PhotoFormat::jpeg},
             {"png", PhotoFormat::png},
             {"tiff", PhotoFormat::tiff},
             {"webp", PhotoFormat::webp},
             {"bmp", PhotoFormat::bmp}};
    for (const auto& row : rows) {
        const auto header = headerOf(encoded(quarters({70, 50}), row.writer));
        ASSERT_TRUE(header) << row.writer;
        EXPECT_EQ(header->format, row.format) << row.writer;
        EXPECT_EQ(header->size, QSize(70, 50)) << row.writer;
    }
    EXPECT_FALSE(headerOf("<svg xmlns=\"http://www.w3.org/2000/svg\"/>"));
}

TEST(PhotoHeader, announcingTooMuchIsRefusedWithoutAllocatingIt)
{
    const QByteArray jpeg = encoded(quarters({64, 64}), "jpeg");
    QByteArray png = encoded(quarters({64, 64}), "png");
    qToBigEndian(quint32(9000), png.data() + 16);
    qToBigEndian(quint32(9000), png.data() + 20);
    const QTemporaryDir folder;
    const qint64 before = peakMemory();
    for (const QByteArray& bytes : {announcing(jpeg, {20000, 20000}), png}) {
        EXPECT_FALSE(headerOf(bytes));
        EXPECT_FALSE(decodePhoto(written(folder, u"a"_qs, bytes), PhotoLevel::eighth));
    }
    EXPECT_LT(peakMemory() - before, 30'000'000);
    EXPECT_TRUE(headerOf(announcing(jpeg, {15000, 15000})));
}

TEST(PhotoHeader, aGiantIsDecodedAtTheFinestLevelThatFits)
{
    PhotoHeader header{.format = PhotoFormat::jpeg, .size = {20000, 14000}};
    EXPECT_EQ(affordableLevel(header, PhotoLevel::full), PhotoLevel::quarter);
    EXPECT_EQ(affordableLevel(header, PhotoLevel::eighth), PhotoLevel::eighth);
    header.size = {6000, 4000};
    EXPECT_EQ(affordableLevel(header, PhotoLevel::full), PhotoLevel::full);
}

TEST(PhotoHeader, progressiveScansCountTheirCoefficients)
{
    const QByteArray bytes = progressiveJpeg({640, 480});
    const auto progressive = headerOf(bytes);
    const auto baseline = headerOf(encoded(quarters({640, 480}), "jpeg"));
    ASSERT_TRUE(progressive && baseline);
    EXPECT_EQ(progressive->workingBytes, 640 * 480 * 2 * 3);
    EXPECT_EQ(baseline->workingBytes, 0);
    // Two progressive photos of 24 megapixels need more than 200 MB together, at any level.
    const PhotoHeader large{.size = {6000, 4000}, .workingBytes = qint64(6000) * 4000 * 2 * 3};
    EXPECT_GT(2 * decodingBytes(large, PhotoLevel::eighth), 200'000'000);
}

TEST(PhotoHeader, aTiffOfManySamplesOrLongStripsCountsThem)
{
    const QByteArray tiff = encoded(quarters({600, 400}), "tiff");
    // Changes the value of the entry `tag` in the TIFF's first directory. An entry has a tag, a
    // type (3: two bytes, 4: four bytes), a count of 1 and the value.
    const auto changed = [&](char tag, quint32 value) {
        QByteArray bytes = tiff;
        for (const char type : {3, 4}) {
            const char entry[]{tag, 1, type, 0, 1, 0, 0, 0};
            if (const auto at = bytes.lastIndexOf(QByteArray(entry, sizeof entry)); at >= 0)
                qToLittleEndian(value, bytes.data() + at + 8);
        }
        return headerOf(bytes);
    };
    constexpr char samplesTag = 0x15, rowsTag = 0x16;
    EXPECT_FALSE(changed(samplesTag, 100));
    ASSERT_TRUE(changed(rowsTag, 8) && changed(rowsTag, 4'000'000));
    EXPECT_EQ(decodingBytes(*changed(rowsTag, 4'000'000), PhotoLevel::full) -
                  decodingBytes(*changed(rowsTag, 8), PhotoLevel::full),
              600 * 392 * 3);
}
