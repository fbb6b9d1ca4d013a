#include "studio/publish/FileToSend.h"

#include "canvas/PngEncoder.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(FileToSend, IsSmallerWithTheSamePixelsIfTheNetworkWantsThat)
{
    const QTemporaryDir folder;
    QImage noisy(200, 100, QImage::Format_ARGB32_Premultiplied);
    noisy.fill(Qt::black);
    QRandomGenerator random(1);
    for (int y = 0; y < noisy.height(); ++y) {
        for (int x = 0; x < noisy.width(); ++x)
            noisy.setPixel(x, y, qRgb(x + random.bounded(9), y + random.bounded(9), 128));
    }
    const auto stored = [&](const QString& name, const QImage& image) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(encodePng(image));
        return file.fileName();
    };
    const QString opaque = stored(u"a.png"_s, noisy);
    const qint64 bytes = QFile(opaque).size();
    EXPECT_EQ(fileToSend(opaque, bytes), opaque);
    const QString smaller = fileToSend(opaque, bytes - 1);
    ASSERT_NE(smaller, opaque);
    EXPECT_LT(QFile(smaller).size(), bytes);
    EXPECT_EQ(QImage(smaller).convertToFormat(noisy.format()), noisy);
    EXPECT_EQ(fileToSend(smaller, 1), smaller) << "there is no smaller one";

    noisy.setPixel(3, 3, 0);
    const QString open = stored(u"b.png"_s, noisy);
    EXPECT_EQ(fileToSend(open, 1), open) << "opacity is kept";
    EXPECT_EQ(fileToSend(folder.filePath(u"none"_s), 1), folder.filePath(u"none"_s));
}
