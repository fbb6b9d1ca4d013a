#pragma once

#include "canvas/ItemPainter.h"
#include "model/SocialFormat.h"

// The picture of an item in screen pixels, painted as for an export. Keeps track of the part that
// edits change and repaints only that, in the next image().
class CanvasPicture {
public:
    // The setters return the part that changes, in pixels of the picture.
    QRect setItem(const std::optional<PublicationItem>& item, SocialFormat format);
    QRect setPixels(QSize pixels);
    // Sets the photo, decoded at any level; null for none. A resampled photo at the same place
    // stays on the picture until the new one is resampled.
    QRect setPhoto(const QImage& photo);

    // The place for which the photo must be resampled; nothing when that is done. Until then a
    // quick drawing of the photo is shown.
    std::optional<PhotoPlace> wantedPlace() const;
    const QImage& photo() const { return m_photo; }
    QRect setResampled(const ResampledPhoto& photo);

    QSize pixels() const { return m_pixels; }
    // Null without an item or a size.
    const QImage& image();

private:
    QRect all() const { return {QPoint(), m_pixels}; }
    QRect markStale(const QRect& part);
    QRect difference(const ItemLayout& before) const;
    const ResampledPhoto& shownPhoto();
    ResampledPhoto quickPhoto(const PhotoPlace& place) const;
    std::optional<PhotoPlace> place() const { return photoPlace(m_layout, m_pixels); }

    ItemLayout m_layout;
    PhotoHandle m_handle;    // the item's photo
    QSize m_pixels;
    QImage m_photo;
    ResampledPhoto m_exact, m_quick;    // each for the place it was made for last
    QImage m_image;
    QRect m_stale;
};
