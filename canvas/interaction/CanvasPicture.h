#pragma once

#include "canvas/ItemPainter.h"
#include "model/SocialFormat.h"

// The picture of an item in the pixels of the screen, as the export paints it. Knows what an edit
// changed and paints that part again, once, when it is asked for.
class CanvasPicture {
public:
    // Each of these returns what changes, in pixels of the picture.
    QRect setItem(const std::optional<PublicationItem>& item, SocialFormat format);
    QRect setPixels(QSize pixels);
    // Decoded at any level; null for none. What is shown stays until this one is resampled, if it
    // lies at the same place.
    QRect setPhoto(const QImage& photo);

    // The place for which the photo has to be resampled; nothing when that is done. Until then a
    // quick drawing of it is shown.
    std::optional<PhotoPlace> wantedPlace() const;
    const QImage& photo() const { return m_photo; }
    QRect setResampled(const ResampledPhoto& photo);

    QSize pixels() const { return m_pixels; }
    // Empty without an item or a size.
    const QImage& image();

private:
    QRect all() const { return {QPoint(), m_pixels}; }
    QRect markStale(const QRect& part);
    QRect difference(const ItemLayout& before) const;
    const ResampledPhoto& shownPhoto();
    ResampledPhoto quickPhoto(const PhotoPlace& place) const;
    std::optional<PhotoPlace> place() const { return photoPlace(m_layout, m_pixels); }

    ItemLayout m_layout;
    PhotoHandle m_handle;    // of the item's photo
    QSize m_pixels;
    QImage m_photo;
    ResampledPhoto m_exact, m_quick;    // for the last place of each
    QImage m_image;
    QRect m_stale;
};
