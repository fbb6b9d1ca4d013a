#include "platform/photo/PhotoDecoder.h"
#include "tests/platform/photo/PhotoSamples.h"

#include <QCryptographicHash>
#include <QRandomGenerator>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// The image as the EXIF `orientation` says it is to be shown, made of rotations and mirrorings.
QImage turned(const QImage& image, int orientation)
{
    const auto rotated = [](const QImage& of, int degrees) {
        return of.transformed(QTransform().rotate(degrees));
    };
    switch (orientation) {
    case 2:
        return image.mirrored(true, false);
    case 3:
        return rotated(image, 180);
    case 4:
        return image.mirrored(false, true);
    case 5:
        return rotated(image, 90).mirrored(true, false);
    case 6:
        return rotated(image, 90);
    case 7:
        return rotated(image, 90).mirrored(false, true);
    case 8:
        return rotated(image, 270);
    }
    return image;
}

}    // namespace

TEST(PhotoDecoder, everyOrientationComesOutUprightOnce)
{
    const QTemporaryDir folder;
    const QImage picture = quarters({96, 64});
    const QByteArray jpeg = encoded(picture, "jpeg", 100);
    const QByteArray webp = encoded(picture, "webp", 100);
    ASSERT_FALSE(webp.isEmpty());
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const QImage expected = turned(picture, orientation);
        const QString jpegFile = written(folder, u"a.jpg"_qs, turnedJpeg(jpeg, orientation));
        const auto full = decodePhoto(jpegFile, PhotoLevel::full);
        ASSERT_TRUE(full) << orientation;
        EXPECT_LT(meanDifference(*full, expected), 4) << orientation;
        const auto half = decodePhoto(jpegFile, PhotoLevel::half);
        ASSERT_TRUE(half) << orientation;
        EXPECT_LT(meanDifference(*half, expected.scaled(expected.size() / 2)), 6) << orientation;
        const auto accepted = acceptPhoto(jpegFile);
        ASSERT_TRUE(accepted) << orientation;
        EXPECT_EQ(accepted->info.size, expected.size()) << orientation;
        const auto identified = identifyPhoto(jpegFile);
        ASSERT_TRUE(identified) << orientation;
        EXPECT_EQ(identified->info, accepted->info) << orientation;
        EXPECT_EQ(identified->digest, accepted->digest) << orientation;

        const QString webpFile =
            written(folder, u"a.webp"_qs, turnedWebp(webp, picture.size(), orientation));
        const auto fromWebp = acceptPhoto(webpFile);
        ASSERT_TRUE(fromWebp) << orientation;
        EXPECT_EQ(fromWebp->info.size, expected.size()) << orientation;
        EXPECT_LT(meanDifference(fromWebp->thumbnail, expected), 4) << orientation;
        EXPECT_EQ(identifyPhoto(webpFile)->info, fromWebp->info) << "by decoding it";
    }
}

TEST(PhotoDecoder, whatIsSaidOfAPhotoWithoutDecodingItIsWhatDecodingFinds)
{
    const QTemporaryDir folder;
    for (const char* format : {"jpeg", "png", "bmp", "gif", "tiff", "webp"}) {
        const QByteArray bytes = encoded(quarters({97, 65}), format);
        if (bytes.isEmpty())
            continue;    // Qt cannot write this format
        const QString file = written(folder, QString::fromLatin1(format), bytes);
        const auto accepted = acceptPhoto(file), identified = identifyPhoto(file);
        ASSERT_TRUE(accepted && identified) << format;
        EXPECT_EQ(identified->info, accepted->info) << format;
        EXPECT_EQ(identified->digest, accepted->digest) << format;
        EXPECT_TRUE(identified->thumbnail.isNull()) << format;
    }
}

TEST(PhotoDecoder, theCoveringLevelIsTheCoarsestThatNeedsNoEnlarging)
{
    const struct {
        QSize photo, needed;
        PhotoLevel level;
    } rows[]{
        {{6016, 4016}, {2023, 1350}, PhotoLevel::half},
        {{2560, 3837}, {1280, 1919}, PhotoLevel::half},    // 3837 halves to 1919, rounded up
        {{2560, 3837}, {1280, 1920}, PhotoLevel::full},
        {{2560, 3837}, {320, 480}, PhotoLevel::eighth},
        {{4000, 3000}, {500, 376}, PhotoLevel::quarter},    // 1/8 is 500 × 375: one row too few
        {{100, 100}, {400, 400}, PhotoLevel::full},
    };
    for (const auto& row : rows)
        EXPECT_EQ(coveringLevel(row.photo, row.needed), row.level)
            << row.photo.width() << ' ' << row.needed.height();
}

TEST(PhotoDecoder, oddSizesAreReducedWithoutASecondScaling)
{
    const QTemporaryDir folder;
    // Stripes of two pixels become stripes of one at half the size; decoding at 5/8 and scaling
    // would blur them.
    QImage stripes(258, 387, QImage::Format_RGB32);
    for (int y = 0; y < stripes.height(); ++y) {
        for (int x = 0; x < stripes.width(); ++x)
            stripes.setPixel(x, y, y / 2 % 2 ? 0xFFFFFFFF : 0xFF000000);
    }
    const QString file = written(folder, u"odd.jpg"_qs, encoded(stripes, "jpeg", 100));
    const auto half = decodePhoto(file, PhotoLevel::half);
    ASSERT_TRUE(half);
    ASSERT_EQ(half->size(), QSize(129, 194));
    for (int y = 0; y < 190; ++y)
        EXPECT_NEAR(half->pixelColor(60, y).red(), y % 2 ? 255 : 0, 12) << y;
    EXPECT_EQ(decodePhoto(file, PhotoLevel::quarter)->size(), QSize(65, 97));
    EXPECT_EQ(decodePhoto(file, PhotoLevel::eighth)->size(), QSize(33, 49));
    EXPECT_EQ(decodePhoto(file, PhotoLevel::full)->size(), stripes.size());
    EXPECT_EQ(acceptPhoto(file)->info.size, stripes.size());
}

TEST(PhotoDecoder, aThumbnailKeepsTheShapeWithinItsBounds)
{
    EXPECT_EQ(thumbnailSize({6000, 4000}), QSize(480, 320));
    EXPECT_EQ(thumbnailSize({200, 100}), QSize(200, 100));
    EXPECT_EQ(thumbnailSize({1000, 10000}), QSize(128, 1280));
    EXPECT_EQ(thumbnailSize({300'000, 1}), QSize(1280, 1));

    const QTemporaryDir folder;
    const QByteArray png = encoded(quarters({900, 600}), "png");
    const auto photo = acceptPhoto(written(folder, u"photo.jpg"_qs, png));
    ASSERT_TRUE(photo) << "the bytes decide, not the name";
    EXPECT_EQ(photo->info, (PhotoInfo{{900, 600}, false}));
    EXPECT_EQ(photo->digest, QCryptographicHash::hash(png, QCryptographicHash::Blake2b_256));
    EXPECT_EQ(photo->thumbnail.size(), QSize(480, 320));
}

TEST(PhotoDecoder, damagedBytesOfAnyFormatDoNoHarm)
{
    const QTemporaryDir folder;
    const QImage picture = quarters({40, 30});
    QByteArrayList files{
        turnedJpeg(encoded(picture, "jpeg"), 6),
        encoded(picture, "png"),
        encoded(picture, "tiff"),
        turnedWebp(encoded(picture, "webp"), picture.size(), 6),
        encoded(picture, "bmp"),
        QByteArray::fromBase64("R0lGODlhAQABAIAAAP///wAAACwAAAAAAQABAAACAkQBADs=")};
    QRandomGenerator random(7);
    for (const QByteArray& bytes : files) {
        ASSERT_TRUE(acceptPhoto(written(folder, u"a"_qs, bytes)));
        const qsizetype step = std::max<qsizetype>(1, bytes.size() / 60);
        for (qsizetype length = 0; length < bytes.size(); length += step) {
            acceptPhoto(written(folder, u"a"_qs, bytes.left(length)));
            QByteArray changed = bytes;
            for (int i = 0; i < 3; ++i)
                changed[random.bounded(int(bytes.size()))] = char(random.bounded(256));
            acceptPhoto(written(folder, u"a"_qs, changed));
        }
    }
}

TEST(PhotoDecoder, whatIsNoPhotoIsNothing)
{
    const QTemporaryDir folder;
    EXPECT_FALSE(acceptPhoto(folder.path()));
    EXPECT_FALSE(acceptPhoto(folder.filePath(u"none.jpg"_qs)));
    EXPECT_FALSE(decodePhoto(u"/dev/zero"_qs, PhotoLevel::full));
    EXPECT_FALSE(acceptPhoto(written(folder, u"a.png"_qs, "<svg width='9' height='9'/>")));
}
