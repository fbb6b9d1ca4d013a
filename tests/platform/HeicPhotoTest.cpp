#include "platform/HeicPhoto.h"
#include "platform/HeicCodedSize.h"

#include <QtEndian>

#include <gtest/gtest.h>

namespace {

// A plain photo of 128x96, 100 of 255 everywhere: linear light, the primaries of ITU-R BT.2020.
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
    EXPECT_NEAR(image.pixelColor(60, 40).green(), 168, 2);    // as sRGB says it
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
