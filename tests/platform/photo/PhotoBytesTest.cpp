#include "platform/photo/PhotoBytes.h"
#include "platform/Memory.h"
#include "tests/platform/photo/PhotoSamples.h"

#include <QColorSpace>

#include <libdeflate.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray bigEndian(quint32 value)
{
    QByteArray bytes(4, 0);
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray chunk(const QByteArray& name, const QByteArray& data)
{
    const QByteArray body = name + data;
    const quint32 sum = libdeflate_crc32(0, body.constData(), std::size_t(body.size()));
    return bigEndian(quint32(data.size())) + body + bigEndian(sum);
}

// Inserts `chunks` after the header of a PNG, where most chunks belong.
QByteArray withChunks(const QByteArray& png, const QByteArray& chunks)
{
    return png.left(33) + chunks + png.mid(33);
}

QByteArray deflated(qsizetype zeros)
{
    return qCompress(QByteArray(zeros, 0), 9).mid(4);
}

QByteArray comments(int count)
{
    return ("\xFF\xFE\xFF\xFF" + QByteArray(65533, 'c')).repeated(count);
}

}    // namespace

TEST(PhotoBytes, chunksThePictureDoesNotNeedAreNotInflated)
{
    const QByteArray png = encoded(quarters({64, 64}), "png");
    const QByteArray text = chunk("zTXt", QByteArray("a\0\0", 3) + deflated(7'900'000));
    const QByteArray profile = chunk("iCCP", QByteArray("a\0\0", 3) + deflated(50'000'000));
    const QTemporaryDir folder;
    const qint64 before = peakMemory();
    for (const QByteArray& chunks : {text.repeated(10), profile.repeated(10)}) {
        const auto decoded =
            decodePhoto(written(folder, u"a.png"_qs, withChunks(png, chunks)), PhotoLevel::full);
        ASSERT_TRUE(decoded);
        EXPECT_TRUE(decoded->textKeys().isEmpty());
        EXPECT_TRUE(neededChunks(withChunks(png, chunks)) == neededChunks(png));
    }
    EXPECT_LT(peakMemory() - before, 60'000'000);
}

TEST(PhotoBytes, chunksOfColourAreKeptOnceAndDamagedOnesAreNot)
{
    QImage image = quarters({64, 64});
    image.setColorSpace(QColorSpace(QColorSpace::AdobeRgb));
    const auto needed = neededChunks(encoded(image, "png"));
    ASSERT_TRUE(needed);
    EXPECT_EQ(needed->count("iCCP"), 1);
    const QByteArray ground = chunk("bKGD", QByteArray(6, 1));
    EXPECT_TRUE(neededChunks(withChunks(*needed, ground.repeated(3))) ==
                withChunks(*needed, ground));
    EXPECT_TRUE(neededChunks(withChunks(*needed, ground.chopped(1) + 'x')) == needed);
    EXPECT_FALSE(neededChunks(needed->chopped(12)));
}

TEST(PhotoBytes, commentsOfAJpegAreNotKeptInMemory)
{
    const QByteArray jpeg = encoded(quarters({64, 64}), "jpeg");
    const QByteArray flooded = jpeg.left(2) + comments(200) + jpeg.mid(2);
    const QTemporaryDir folder;
    const QString file = written(folder, u"a.jpg"_qs, flooded);
    const qint64 before = peakMemory();
    const auto decoded = acceptPhoto(file);
    ASSERT_TRUE(decoded);
    EXPECT_LT(peakMemory() - before, 40'000'000);
    EXPECT_TRUE(decodePhoto(file, PhotoLevel::full)->textKeys().isEmpty());

    const QByteArray endless = jpeg.left(2) + comments(400) + jpeg.mid(2);
    EXPECT_FALSE(acceptPhoto(written(folder, u"a.jpg"_qs, endless)));
}

TEST(PhotoBytes, manyScansOverALargePictureAreRefused)
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

TEST(PhotoBytes, whatFollowsThePictureIsNotTakenForScans)
{
    const QByteArray scan("\xFF\xDA\0\x02", 4);
    const QByteArray jpeg = announcing(encoded(quarters({64, 64}), "jpeg"), {7000, 7000});
    const QTemporaryDir folder;
    EXPECT_TRUE(
        decodePhoto(written(folder, u"a.jpg"_qs, jpeg + scan.repeated(1000)), PhotoLevel::eighth));
    EXPECT_EQ(scanCount(jpeg), 1);
    EXPECT_GT(scanCount(progressiveJpeg({64, 64})), 5);
    // A reserved marker has no length, so it must not hide the scans behind it.
    EXPECT_EQ(scanCount(jpeg.chopped(2) + "\xFF\x02\xFF\xFF" + scan.repeated(9)), 10);
}
