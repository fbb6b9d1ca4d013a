#include "canvas/PngEncoder.h"
#include "canvas/WebPEncoder.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QImage pattern(QSize size, QImage::Format format)
{
    QImage image(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixelColor(
                x, y, QColor(x * 37 % 256, y * 11 % 256, (x * y) % 256, 255 - x * y % 200));
    }
    return image.convertToFormat(format);
}

// Noise, for which several PNG predictors of a byte are often equally good.
QImage noisyPattern(QSize size, QImage::Format format)
{
    QImage image(size, QImage::Format_ARGB32);
    QRandomGenerator random(5);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, random.generate());
    }
    return image.convertToFormat(format);
}

}    // namespace

TEST(PngEncoder, decodesToTheSamePixels)
{
    for (const QSize size : {QSize(1, 1), QSize(3, 2), QSize(67, 41), QSize(200, 200)}) {
        for (const auto& paint : {pattern, noisyPattern}) {
            for (const auto format : {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied}) {
                const QImage image = paint(size, format);
                EXPECT_EQ(QImage::fromData(encodePng(image)).convertToFormat(format), image)
                    << size.width() << " " << format;
            }
        }
    }
    EXPECT_TRUE(encodePng(QImage()).isEmpty());
}

TEST(PngEncoder, theSmallFileHasTheSamePixels)
{
    for (const QSize size : {QSize(1, 1), QSize(3, 2), QSize(67, 41), QSize(200, 200)}) {
        for (const auto& paint : {pattern, noisyPattern}) {
            const QImage image = paint(size, QImage::Format_RGB32);
            const QByteArray small = encodeSmallPng(image);
            EXPECT_EQ(QImage::fromData(small).convertToFormat(QImage::Format_RGB32), image)
                << size.width();
            EXPECT_LE(small.size(), encodePng(image).size());
        }
    }
    EXPECT_TRUE(encodeSmallPng(QImage()).isEmpty());
    EXPECT_TRUE(encodeSmallPng(pattern({3, 2}, QImage::Format_ARGB32_Premultiplied)).isEmpty());
}

TEST(PngEncoder, writesEightBitRgbaAndOnlyTheNecessaryChunks)
{
    const QByteArray png = encodePng(pattern({20, 10}, QImage::Format_RGB32));
    QByteArrayList chunks;
    for (qsizetype at = 8; at + 8 <= png.size();) {
        chunks.append(png.mid(at + 4, 4));
        at += 12 + qFromBigEndian<quint32>(png.constData() + at);
    }
    EXPECT_EQ(chunks, (QByteArrayList{"IHDR", "IDAT", "IEND"}));
    EXPECT_EQ(png.mid(24, 2), QByteArray("\x08\x06"));
}

TEST(WebPEncoder, qualityBecomesAWholePercentage)
{
    const auto percent = [](double quality) {
        return WebPEncoder::arguments(quality, u"in"_s, u"out"_s);
    };
    EXPECT_EQ(percent(0.85),
              (QStringList{u"-quiet"_s, u"-q"_s, u"85"_s, u"in"_s, u"-o"_s, u"out"_s}));
    EXPECT_EQ(percent(1.7).at(2), u"100"_s);
    EXPECT_EQ(percent(-0.2).at(2), u"0"_s);
    EXPECT_EQ(percent(0.125).at(2), u"13"_s);
}

TEST(WebPEncoder, takesTheFirstPlaceThatIsExecutable)
{
    const QTemporaryDir folder;
    const QString plain = folder.filePath(u"plain"_s), program = folder.filePath(u"cwebp"_s);
    for (const QString& path : {plain, program})
        ASSERT_TRUE(QFile(path).open(QIODevice::WriteOnly));
    QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner);
    EXPECT_EQ(WebPEncoder::executableURL({u"/nowhere/cwebp"_s, plain, folder.path(), program}),
              program);
    EXPECT_EQ(WebPEncoder::executableURL({u"/nowhere/cwebp"_s, plain}), std::nullopt);
}

TEST(WebPEncoder, leavesNothingBehind)
{
    if (!WebPEncoder::executableURL())
        GTEST_SKIP() << "cwebp is not installed";
    const QTemporaryDir folder;
    qputenv("TMPDIR", QFile::encodeName(folder.path()));
    const auto webp = WebPEncoder::convert(encodePng(pattern({64, 48}, QImage::Format_RGB32)), 0.9);
    const auto broken = WebPEncoder::convert("not a picture", 0.9);
    qunsetenv("TMPDIR");
    ASSERT_TRUE(webp);
    EXPECT_TRUE(webp->startsWith("RIFF"));
    EXPECT_EQ(broken, std::nullopt);
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}
