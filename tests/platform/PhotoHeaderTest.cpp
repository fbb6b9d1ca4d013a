#include "platform/PhotoHeader.h"
#include "platform/Memory.h"
#include "tests/platform/PhotoSamples.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

std::optional<PhotoHeader> headerOf(QByteArray bytes)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return readPhotoHeader(buffer);
}

QByteArray progressiveJpeg(QSize size)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setProgressiveScanWrite(true);
    writer.write(quarters(size));
    return bytes;
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
    EXPECT_EQ(progressive->coefficientBytes, 640 * 480 * 2 * 3);
    EXPECT_EQ(baseline->coefficientBytes, 0);
    EXPECT_GT(scanCount(bytes), 5);
    // Two of 24 megapixels must not decode at once within 200 MB, whatever the level.
    const PhotoHeader large{.size = {6000, 4000}, .coefficientBytes = qint64(6000) * 4000 * 2 * 3};
    EXPECT_GT(2 * decodingBytes(large, PhotoLevel::eighth), 200'000'000);
}

TEST(PhotoHeader, manyScansOverALargePictureAreRefused)
{
    const QByteArray jpeg = announcing(progressiveJpeg({64, 64}), {7000, 7000});
    const qsizetype last = jpeg.lastIndexOf(QByteArray("\xFF\xDA", 2));
    const QByteArray scan = jpeg.mid(last).chopped(2);
    const QTemporaryDir folder;
    const auto decoded = [&](int scans) {
        const QByteArray bytes = jpeg.left(last) + scan.repeated(scans) + "\xFF\xD9";
        return decodePhoto(written(folder, u"a.jpg"_qs, bytes), PhotoLevel::eighth);
    };
    EXPECT_TRUE(decoded(1));
    EXPECT_FALSE(decoded(110));
}
