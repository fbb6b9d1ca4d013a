#include "platform/photo/PhotoDecoder.h"
#include "tests/platform/photo/PhotoSamples.h"

#include <QDir>

#include <gtest/gtest.h>

// Tests on a folder of real photographs, whose path is in MOLTIVA_PHOTOS.

using namespace Qt::StringLiterals;

class SamplePhotos : public testing::Test {
protected:
    void SetUp() override
    {
        if (!qEnvironmentVariableIsSet("MOLTIVA_PHOTOS"))
            GTEST_SKIP() << "MOLTIVA_PHOTOS names no folder of photographs";
    }
    QString path(const QString& name) const
    {
        return qEnvironmentVariable("MOLTIVA_PHOTOS") + u'/' + name;
    }
    QImage photo(const QString& name) const
    {
        return decodePhoto(path(name), PhotoLevel::full).value_or(QImage());
    }
};

TEST_F(SamplePhotos, photosInPairsLookAlike)
{
    EXPECT_LT(meanDifference(photo(u"formats/jpeg-cmyk.jpg"_qs),
                             photo(u"formats/jpeg-cmyk-same-in-rgb.jpg"_qs)),
              7);
    EXPECT_LT(meanDifference(photo(u"formats/png-16bit-linear-profile.png"_qs),
                             photo(u"formats/png-16bit-linear-as-srgb.png"_qs)),
              1);
}

TEST_F(SamplePhotos, wordsInEveryOrientationCanBeRead)
{
    for (const QString& shape : {u"landscape"_qs, u"portrait"_qs}) {
        const QImage upright = photo(u"orientation/%1-1.jpg"_qs.arg(shape));
        for (int i = 2; i <= 8; ++i)
            EXPECT_LT(meanDifference(photo(u"orientation/%1-%2.jpg"_qs.arg(shape).arg(i)), upright),
                      5)
                << qPrintable(shape) << i;
    }
    EXPECT_EQ(photo(u"formats/heic-iphone13-rotated-displayp3.heic"_qs).size(), QSize(3024, 4032));
    EXPECT_EQ(photo(u"formats/tiff-orientation-6.tif"_qs).size(), QSize(590, 88));
}

TEST_F(SamplePhotos, everyFormatIsReadButTheTwoQtCannot)
{
    QStringList unread;
    for (const QFileInfo& file : QDir(path(u"formats"_qs)).entryInfoList(QDir::Files)) {
        if (!acceptPhoto(file.filePath()))
            unread.append(file.fileName());
    }
    EXPECT_EQ(unread.join(u' '), u"jpeg-12bit.jpg tiff-16bit-tiled-deflate.tiff"_qs);
}

TEST_F(SamplePhotos, brokenFilesAreDroppedOrLoadedReduced)
{
    QStringList read;
    for (const QFileInfo& file : QDir(path(u"broken"_qs)).entryInfoList(QDir::Files)) {
        if (acceptPhoto(file.filePath()))
            read.append(file.fileName());
    }
    EXPECT_EQ(read.join(u' '),
              u"fuzzed-8194x1376.jpg giant-20000x14000.jpg truncated-early.jpg"_qs);
    EXPECT_EQ(photo(u"broken/giant-20000x14000.jpg"_qs).size(), QSize(5000, 3500));
}

TEST_F(SamplePhotos, cutAndChangedHeicDoesNoHarm)
{
    QFile file(path(u"formats/heic-iphone7-displayp3.heic"_qs));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    const QTemporaryDir folder;
    for (qsizetype length = 16; length < bytes.size(); length = length * 5 / 2)
        acceptPhoto(written(folder, u"a.heic"_qs, bytes.left(length)));
}
