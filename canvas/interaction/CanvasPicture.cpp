#include "canvas/interaction/CanvasPicture.h"

#include <QPainter>

namespace {

template <typename Layer>
QRectF differenceOf(const QList<Layer>& before, const QList<Layer>& now)
{
    QRectF changed;
    for (qsizetype i = 0; i < std::max(before.size(), now.size()); ++i) {
        if (i < before.size() && i < now.size() && before[i].source == now[i].source)
            continue;
        if (i < before.size())
            changed |= extentOf(before[i]);
        if (i < now.size())
            changed |= extentOf(now[i]);
    }
    return changed;
}

}    // namespace

QRect CanvasPicture::setItem(const std::optional<PublicationItem>& item, SocialFormat format)
{
    const ItemLayout before = m_layout;
    m_layout = item ? layOut(*item, exportSize(format), designSize(format), before) : ItemLayout();
    // Drops the former photo: it must not appear together with the new item, not even for a moment.
    if (const PhotoHandle handle = item ? item->image : PhotoHandle(); handle != m_handle) {
        m_handle = handle;
        m_photo = QImage();
        m_exact = m_quick = {};
        return markStale(all());
    }
    return markStale(difference(before));
}

QRect CanvasPicture::setPixels(QSize pixels)
{
    if (pixels == m_pixels)
        return {};
    m_pixels = pixels;
    return markStale(all());
}

QRect CanvasPicture::setPhoto(const QImage& photo)
{
    if (photo.cacheKey() == m_photo.cacheKey())
        return {};
    m_photo = photo;
    const bool showsTheSame = place() && m_exact.place == *place() && !m_exact.image.isNull();
    return !photo.isNull() && showsTheSame ? QRect() : markStale(all());
}

std::optional<PhotoPlace> CanvasPicture::wantedPlace() const
{
    const auto wanted = place();
    if (m_photo.isNull() || !wanted || wanted->shown.isEmpty() ||
        (m_exact.source == m_photo.cacheKey() && m_exact.place == *wanted))
        return std::nullopt;
    return wanted;
}

QRect CanvasPicture::setResampled(const ResampledPhoto& photo)
{
    if (photo.source != m_photo.cacheKey() || photo.place != place())
        return {};
    m_exact = photo;
    return markStale(all());
}

QRect CanvasPicture::markStale(const QRect& part)
{
    const QRect inside = part.intersected(all());
    m_stale |= inside;
    return inside;
}

QRect CanvasPicture::difference(const ItemLayout& before) const
{
    if (before.canvas != m_layout.canvas || before.scale != m_layout.scale ||
        photoPlace(before, m_pixels) != place())
        return all();
    const QRectF changed =
        differenceOf(before.shapes, m_layout.shapes) | differenceOf(before.texts, m_layout.texts);
    if (changed.isEmpty())
        return {};
    const double scale = pictureScale(m_layout, m_pixels);
    return QTransform::fromScale(scale, scale)
        .mapRect(changed)
        .toAlignedRect()
        .adjusted(-1, -1, 1, 1);
}

const ResampledPhoto& CanvasPicture::shownPhoto()
{
    static const ResampledPhoto none;
    const auto wanted = place();
    if (m_photo.isNull() || !wanted)
        return none;
    if (m_exact.place == *wanted && !m_exact.image.isNull())
        return m_exact;
    if (m_quick.place != *wanted || m_quick.source != m_photo.cacheKey())
        m_quick = quickPhoto(*wanted);
    return m_quick;
}

// Draws all of `place.shown` into one image: if the photo were stretched anew for each stale part,
// the parts would not match where they meet.
ResampledPhoto CanvasPicture::quickPhoto(const PhotoPlace& place) const
{
    ResampledPhoto quick{m_photo.cacheKey(), place,
                         QImage(place.shown.size(), QImage::Format_ARGB32_Premultiplied)};
    if (quick.image.isNull())
        return quick;
    if (m_photo.hasAlphaChannel())
        quick.image.fill(Qt::transparent);
    const PixelRect& whole = place.whole;
    // Longest side in pixels that QPainter can draw: it steps through an image in fixed-point
    // numbers, which are too coarse for a longer one. A larger photo is resampled instead.
    constexpr qint64 furthest = 100'000'000;
    if (std::max(whole.width, whole.height) > furthest)
        return resampledPhoto(m_photo, place);
    QPainter painter(&quick.image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.translate(-place.shown.topLeft());
    QRegion missing = place.shown;
    // If the photo has only moved, reuses the pixels of m_exact and draws only the part that comes
    // into view. Rounding may change the size of a moved photo by a pixel.
    const PixelRect& before = m_exact.place.whole;
    if (m_exact.source == m_photo.cacheKey() && !m_exact.image.isNull() &&
        std::abs(whole.width - before.width) <= 1 && std::abs(whole.height - before.height) <= 1) {
        const QRect kept =
            m_exact.place.shown.translated(int(whole.x - before.x), int(whole.y - before.y));
        painter.drawImage(kept.topLeft(), m_exact.image);
        missing -= kept;
    }
    painter.setClipRegion(missing);
    if (!missing.isEmpty())
        painter.drawImage(
            QRectF(double(whole.x), double(whole.y), double(whole.width), double(whole.height)),
            m_photo);
    return quick;
}

const QImage& CanvasPicture::image()
{
    if (m_layout.canvas.isEmpty() || m_pixels.isEmpty()) {
        m_image = QImage();
        return m_image;
    }
    if (m_image.size() != m_pixels) {
        m_image = QImage(m_pixels, QImage::Format_ARGB32_Premultiplied);
        m_stale = all();
    }
    if (!m_stale.isEmpty() && !m_image.isNull())
        paintItem(m_image, m_layout, shownPhoto(), m_stale);
    m_stale = {};
    return m_image;
}
