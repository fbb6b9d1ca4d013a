#include "platform/photo/PhotoColor.h"

#include <QColorSpace>
#include <QColorTransform>

#include <lcms2.h>

#include <algorithm>
#include <memory>

namespace {

// Keeps sixteen bits per channel if the picture has them: with eight, linear light would show
// bands.
QImage inConvertibleFormat(QImage picture)
{
    const bool deep = picture.depth() > 32 || picture.format() == QImage::Format_Grayscale16 ||
                      picture.pixelFormat().redSize() > 8;
    const bool alpha = picture.hasAlphaChannel();
    const auto format = deep ? (alpha ? QImage::Format_RGBA64 : QImage::Format_RGBX64)
                             : (alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    if (picture.format() != format)
        picture.convertTo(format);
    return picture;
}

// Converts in strips that are too small for Qt to divide among the threads of its global pool.
// Those threads run at the interface's priority, and the other cores are busy with other photos.
void convertByMatrix(QImage& picture, const QColorTransform& transform)
{
    constexpr int stripPixels = 1 << 16;
    const int rows = std::max(1, stripPixels / picture.width());
    const auto stride = picture.bytesPerLine();
    uchar* const bits = picture.bits();
    for (int y = 0; y < picture.height(); y += rows) {
        QImage strip(bits + y * stride, picture.width(), std::min(rows, picture.height() - y),
                     stride, picture.format());
        strip.applyColorTransform(transform);
    }
}

struct LcmsDeleter {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using LcmsProfile = std::unique_ptr<void, LcmsDeleter>;

// Converts from a table-based profile, which QColorSpace refuses.
void convertByTables(QImage& picture, const QByteArray& rawProfile)
{
    const LcmsProfile from(
        cmsOpenProfileFromMem(rawProfile.constData(), cmsUInt32Number(rawProfile.size())));
    const LcmsProfile to(cmsCreate_sRGBProfile());
    if (!from || !to || cmsGetColorSpace(from.get()) != cmsSigRgbData)
        return;
    const cmsUInt32Number layout = picture.depth() == 64 ? TYPE_RGBA_16 : TYPE_BGRA_8;
    cmsHTRANSFORM transform = cmsCreateTransform(from.get(), layout, to.get(), layout,
                                                 INTENT_PERCEPTUAL, cmsFLAGS_COPY_ALPHA);
    if (!transform)
        return;
    const auto stride = cmsUInt32Number(picture.bytesPerLine());
    uchar* const bits = picture.bits();
    cmsDoTransformLineStride(transform, bits, bits, cmsUInt32Number(picture.width()),
                             cmsUInt32Number(picture.height()), stride, stride, 0, 0);
    cmsDeleteTransform(transform);
}

}    // namespace

QImage inSrgb(QImage picture, const QByteArray& rawProfile)
{
    if (picture.isNull())
        return picture;
    const QColorSpace space = picture.colorSpace();
    const QColorSpace srgb(QColorSpace::SRgb);
    if (space.isValid()) {
        if (space != srgb) {
            picture = inConvertibleFormat(std::move(picture));
            convertByMatrix(picture, space.transformationToColorSpace(srgb));
        }
    } else if (const QByteArray raw = rawProfile.isEmpty() ? space.iccProfile() : rawProfile;
               !raw.isEmpty()) {
        picture = inConvertibleFormat(std::move(picture));
        convertByTables(picture, raw);
    }
    const auto format =
        picture.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    if (picture.format() != format)
        picture.convertTo(format);
    picture.setColorSpace(srgb);
    return picture;
}
