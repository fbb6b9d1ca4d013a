#include "platform/photo/PhotoColor.h"
#include "platform/photo/PhotoDecoder.h"
#include "tests/platform/photo/PhotoSamples.h"

#include <QColorSpace>

#include <lcms2.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// A table-based profile that swaps red and blue.
QByteArray swappingProfile()
{
    cmsHPROFILE srgb = cmsCreate_sRGBProfile(), lab = cmsCreateLab2Profile(nullptr);
    cmsHTRANSFORM toLab =
        cmsCreateTransform(srgb, TYPE_BGR_16, lab, TYPE_LabV2_16, INTENT_PERCEPTUAL, 0);
    cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
    cmsSetProfileVersion(profile, 2.4);
    cmsSetDeviceClass(profile, cmsSigDisplayClass);
    cmsSetColorSpace(profile, cmsSigRgbData);
    cmsSetPCS(profile, cmsSigLabData);
    cmsPipeline* table = cmsPipelineAlloc(nullptr, 3, 3);
    cmsStage* grid = cmsStageAllocCLut16bit(nullptr, 17, 3, 3, nullptr);
    const auto sample = [](const cmsUInt16Number in[], cmsUInt16Number out[], void* transform) {
        cmsDoTransform(transform, in, out, 1);
        return 1;
    };
    cmsStageSampleCLut16bit(grid, sample, toLab, 0);
    cmsPipelineInsertStage(table, cmsAT_END, grid);
    cmsWriteTag(profile, cmsSigAToB0Tag, table);
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    QByteArray bytes(qsizetype(size), 0);
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsPipelineFree(table);
    cmsCloseProfile(profile);
    cmsDeleteTransform(toLab);
    cmsCloseProfile(lab);
    cmsCloseProfile(srgb);
    return bytes;
}

}    // namespace

TEST(PhotoColor, wideGamutPicturesAreConvertedAndNotShownDull)
{
    QImage image(40, 40, QImage::Format_RGB32);
    image.fill(QColor(200, 100, 50));
    const QColor expected = QColorSpace(QColorSpace::DisplayP3)
                                .transformationToColorSpace(QColorSpace(QColorSpace::SRgb))
                                .map(QColor(200, 100, 50));
    image.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    const QTemporaryDir folder;
    const auto decoded =
        decodePhoto(written(folder, u"p3.png"_qs, encoded(image, "png")), PhotoLevel::full);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->format(), QImage::Format_RGB32);
    EXPECT_NE(expected.red(), 200);
    EXPECT_NEAR(decoded->pixelColor(20, 20).red(), expected.red(), 1);
    EXPECT_NEAR(decoded->pixelColor(20, 20).green(), expected.green(), 1);
    EXPECT_NEAR(decoded->pixelColor(20, 20).blue(), expected.blue(), 1);
}

TEST(PhotoColor, profilesOfTablesAreConvertedToo)
{
    const QByteArray profile = swappingProfile();
    ASSERT_FALSE(QColorSpace::fromIccProfile(profile).isValid()) << "no test of the tables";
    QImage image(40, 40, QImage::Format_RGB32);
    image.fill(QColor(200, 100, 50));
    const QColor converted = inSrgb(image, profile).pixelColor(20, 20);
    EXPECT_NEAR(converted.red(), 50, 3);
    EXPECT_NEAR(converted.blue(), 200, 3);

    // Embeds the profile in a JPEG.
    const QByteArray jpeg = encoded(image, "jpeg");
    const QByteArray body = QByteArray("ICC_PROFILE\0\x01\x01", 14) + profile;
    QByteArray length(2, 0);
    qToBigEndian(quint16(body.size() + 2), length.data());
    const QTemporaryDir folder;
    const auto decoded = decodePhoto(
        written(folder, u"a.jpg"_qs, jpeg.left(2) + "\xFF\xE2" + length + body + jpeg.mid(2)),
        PhotoLevel::full);
    ASSERT_TRUE(decoded);
    EXPECT_NEAR(decoded->pixelColor(20, 20).red(), 50, 4);
    EXPECT_NEAR(decoded->pixelColor(20, 20).blue(), 200, 4);
}

TEST(PhotoColor, transparencyAndSixteenBitsSurvive)
{
    QImage image(8, 8, QImage::Format_RGBA64);
    image.fill(QColor(255, 0, 0, 128));
    image.setColorSpace(QColorSpace(QColorSpace::SRgbLinear));
    const QImage converted = inSrgb(image);
    EXPECT_EQ(converted.format(), QImage::Format_ARGB32_Premultiplied);
    EXPECT_NEAR(converted.pixelColor(4, 4).alpha(), 128, 1);
    EXPECT_GT(converted.pixelColor(4, 4).red(), 250);
}
