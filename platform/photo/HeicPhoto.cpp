#include "platform/photo/HeicPhoto.h"

#include "platform/photo/HeicCodedSize.h"
#include "platform/photo/PhotoColor.h"

#include <QColorSpace>

#include <libheif/heif.h>

#include <memory>

namespace {

template <auto release>
struct Releaser {
    template <typename T>
    void operator()(T* object) const
    {
        release(object);
    }
};
using Context = std::unique_ptr<heif_context, Releaser<heif_context_free>>;
using Handle = std::unique_ptr<heif_image_handle, Releaser<heif_image_handle_release>>;
using Picture = std::unique_ptr<heif_image, Releaser<heif_image_release>>;
using CodedProfile =
    std::unique_ptr<heif_color_profile_nclx, Releaser<heif_nclx_color_profile_free>>;
using Options = std::unique_ptr<heif_decoding_options, Releaser<heif_decoding_options_free>>;

QByteArray rawProfile(const heif_image_handle* handle)
{
    const auto size = heif_image_handle_get_raw_color_profile_size(handle);
    constexpr std::size_t largest = 16 << 20;
    if (size == 0 || size > largest)
        return {};
    QByteArray profile(qsizetype(size), Qt::Uninitialized);
    if (heif_image_handle_get_raw_color_profile(handle, profile.data()).code != heif_error_Ok)
        return {};
    return profile;
}

// The colour space of a profile that is stored as code points (nclx). The transfer curves of video
// are treated like that of sRGB, which they resemble.
QColorSpace codedSpace(const heif_image_handle* handle)
{
    heif_color_profile_nclx* found = nullptr;
    const auto error = heif_image_handle_get_nclx_color_profile(handle, &found);
    const CodedProfile profile(found);
    if (error.code != heif_error_Ok || !profile)
        return {};
    const auto curve = profile->transfer_characteristics == heif_transfer_characteristic_linear
                           ? QColorSpace::TransferFunction::Linear
                           : QColorSpace::TransferFunction::SRgb;
    switch (int(profile->color_primaries)) {
    case 9:    // ITU-R BT.2020
        return QColorSpace({0.3127, 0.3290}, {0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046}, curve);
    case 12:    // Display P3
        return QColorSpace(QColorSpace::Primaries::DciP3D65, curve);
    default:
        return QColorSpace(QColorSpace::Primaries::SRgb, curve);
    }
}

}    // namespace

QImage readHeicPhoto(const QByteArray& bytes, QSize announced)
{
    // The codec rounds the sides of a picture up to whole blocks.
    constexpr qint64 block = 64;
    const qint64 mostPixels = (announced.width() + block) * (announced.height() + block);
    if (largestCodedPicture(bytes) > mostPixels)
        return {};
    constexpr int longestSide = 8000;    // side of a square with the largest allowed area
    const Context context(heif_context_alloc());
    heif_context_set_maximum_image_size_limit(context.get(), longestSide);
    if (heif_context_read_from_memory_without_copy(context.get(), bytes.constData(),
                                                   std::size_t(bytes.size()), nullptr)
            .code != heif_error_Ok)
        return {};
    heif_image_handle* primary = nullptr;
    if (heif_context_get_primary_image_handle(context.get(), &primary).code != heif_error_Ok)
        return {};
    const Handle handle(primary);
    const qint64 width = heif_image_handle_get_width(handle.get());
    const qint64 height = heif_image_handle_get_height(handle.get());
    if (width <= 0 || height <= 0 || width * height > qint64(longestSide) * longestSide)
        return {};

    const bool alpha = heif_image_handle_has_alpha_channel(handle.get());
    const Options options(heif_decoding_options_alloc());
    options->convert_hdr_to_8bit = 1;
    heif_image* decoded = nullptr;
    if (heif_decode_image(handle.get(), &decoded, heif_colorspace_RGB, heif_chroma_interleaved_RGBA,
                          options.get())
            .code != heif_error_Ok)
        return {};
    Picture picture(decoded);
    int stride = 0;
    const uchar* const rows =
        heif_image_get_plane_readonly(picture.get(), heif_channel_interleaved, &stride);
    const int pictureWidth = heif_image_get_width(picture.get(), heif_channel_interleaved);
    const int pictureHeight = heif_image_get_height(picture.get(), heif_channel_interleaved);
    if (!rows || pictureWidth <= 0 || pictureHeight <= 0 || stride < pictureWidth * 4 ||
        qint64(pictureWidth) * pictureHeight > mostPixels)
        return {};
    const auto format = !alpha ? QImage::Format_RGBX8888
                        : heif_image_handle_is_premultiplied_alpha(handle.get())
                            ? QImage::Format_RGBA8888_Premultiplied
                            : QImage::Format_RGBA8888;
    QImage image = QImage(rows, pictureWidth, pictureHeight, stride, format)
                       .convertToFormat(alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    picture.reset();

    const QByteArray profile = rawProfile(handle.get());
    image.setColorSpace(profile.isEmpty() ? codedSpace(handle.get())
                                          : QColorSpace::fromIccProfile(profile));
    return inSrgb(std::move(image), profile);
}
