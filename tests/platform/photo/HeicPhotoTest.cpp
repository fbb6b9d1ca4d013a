#include "platform/photo/HeicPhoto.h"
#include "platform/photo/HeicCodedSize.h"
#include "platform/photo/PhotoDecoder.h"
#include "tests/platform/photo/PhotoSamples.h"

#include <QtEndian>

#include <gtest/gtest.h>

namespace {

// A plain grey photo of 128 × 96 pixels: 100/255 in linear light, with the primaries of ITU-R
// BT.2020.
QByteArray greyHeic()
{
    return QByteArray::fromBase64(
        "AAAAHGZ0eXBoZWljAAAAAG1pZjFoZWljbWlhZgAAAVZtZXRhAAAAAAAAACFoZGxyAAAAAAAAAABwaWN0AAAA"
        "AAAAAAAAAAAAAAAAAA5waXRtAAAAAAABAAAAImlsb2MAAAAAREAAAQABAAAAAAF6AAEAAAAAAAAAHgAAACNp"
        "aW5mAAAAAAABAAAAFWluZmUCAAAAAAEAAGh2YzEAAAAA1mlwcnAAAAC3aXBjbwAAAHhodmNDAQNwAAAAAAAA"
        "AAAAHvAA/P34+AAADwMgAAEAGEABDAH//wNwAAADAJAAAAMAAAMAHroCQCEAAQArQgEBA3AAAAMAkAAAAwAA"
        "AwAeoBAgYWW6kkprm4SEAwIAAAMAAgAAAwACECIAAQAHRAHBcrAiQAAAABRpc3BlAAAAAAAAAIAAAABgAAAA"
        "E2NvbHJuY2x4AAkACAAGgAAAABBwaXhpAAAAAAMICAgAAAAXaXBtYQAAAAAAAAABAAEEgQKDhAAAACZtZGF0"
        "AAAAGigBrxOA5shoU//+y0x5RhoHKRTP0/861Kvw");
}

}    // namespace

TEST(HeicPhoto, linearLightIsConvertedWhateverThePrimaries)
{
    const QImage image = readHeicPhoto(greyHeic(), QSize(128, 96));
    ASSERT_EQ(image.size(), QSize(128, 96));
    // 168 is the sRGB value of 100/255 in linear light.
    EXPECT_NEAR(image.pixelColor(60, 40).green(), 168, 2);
}

// Some telephones write the pictures before the `meta` box with their properties.
TEST(HeicPhoto, propertiesBehindALargeBoxAreFound)
{
    const QByteArray heic = greyHeic();
    const qsizetype start = heic.indexOf("meta") - 4;
    QByteArray before(3 << 20, '\0');
    for (const bool isLong : {false, true}) {
        qToBigEndian(quint32(isLong ? 1 : before.size()), before.data());
        before.replace(4, 4, "free");
        qToBigEndian(quint64(before.size()), before.data() + 8);
        QByteArray moved = QByteArray(heic).insert(start, before);
        // The item location box contains the offset of the coded picture.
        const qsizetype place = moved.indexOf("iloc") + 16;
        ASSERT_EQ(qFromBigEndian<quint32>(moved.constData() + place), 0x17AU);
        qToBigEndian(quint32(0x17A + before.size()), moved.data() + place);
        const QTemporaryDir folder;
        const auto photo = acceptPhoto(written(folder, u"a.heic"_qs, moved));
        ASSERT_TRUE(photo) << isLong;
        EXPECT_EQ(photo->info.size, QSize(128, 96));
        // Writes a 64-bit length beyond the end of the file, which is the box's length only if
        // `isLong`.
        qToBigEndian(quint64(1) << 62, moved.data() + start + 8);
        EXPECT_EQ(acceptPhoto(written(folder, u"b.heic"_qs, moved)).has_value(), !isLong);
    }
}

TEST(HeicPhoto, aPictureLargerThanItsContainerSaysIsNotDecoded)
{
    QByteArray heic = greyHeic();
    EXPECT_EQ(largestCodedPicture(heic), 128 * 96);
    const qsizetype announced = heic.indexOf("ispe");
    qToBigEndian(quint32(16), heic.data() + announced + 8);
    qToBigEndian(quint32(16), heic.data() + announced + 12);
    EXPECT_TRUE(readHeicPhoto(heic, QSize(16, 16)).isNull());
}
