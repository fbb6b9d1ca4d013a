#include "account/ImagePayload.h"
#include "account/AccountError.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(ImagePayload, SendsPhotosAsJpegOfAtMost1600Pixels)
{
    const QTemporaryDir folder;
    struct Row {
        QSize photo, sent;
        QString name;
    };
    for (const Row& row :
         {Row{{4000, 3000}, {1600, 1200}, u"a.jpg"_s}, Row{{800, 600}, {800, 600}, u"b.png"_s},
          Row{{3, 4000}, {1, 1600}, u"c.png"_s}}) {
        QImage photo(row.photo, QImage::Format_RGB32);
        photo.fill(QColor(200, 30, 30));
        ASSERT_TRUE(photo.save(folder.filePath(row.name)));
        const ImagePayload payload = preparedImagePayload(folder.filePath(row.name));
        EXPECT_EQ(payload.mimeType, u"image/jpeg"_s);
        const QImage sent = QImage::fromData(payload.bytes, "JPEG");
        EXPECT_EQ(sent.size(), row.sent);
        EXPECT_NEAR(qRed(sent.pixel(0, 0)), 200, 4);
    }
}

TEST(ImagePayload, SendsWhatIsNoPhotoAsItIs)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a.HEIF"_s);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("not a photo");
    file.close();
    EXPECT_EQ(preparedImagePayload(path).mimeType, u"image/heic"_s);
    EXPECT_EQ(preparedImagePayload(path).bytes, "not a photo");
    EXPECT_EQ(mimeType(u"x.webp"_s) + mimeType(u"x.PNG"_s) + mimeType(u"x.gif"_s),
              u"image/webpimage/pngimage/jpeg"_s);
    EXPECT_THROW(preparedImagePayload(folder.filePath(u"absent.jpg"_s)), AccountError);

    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(file.resize(qint64(1) << 32));    // 4 GiB, without using disk space
    EXPECT_THROW(preparedImagePayload(path), AccountError);
}
