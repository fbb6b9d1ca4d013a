#pragma once

#include "canvas/ItemPainter.h"
#include "model/SocialFormat.h"

// The picture of an item in screen pixels, painted as for an export. Records which part is out of
// date after changes; the next call of image() repaints only that part.
class CanvasPicture {
public:
    // The setters return the part of the picture that changes, in pixels of the picture.
    QRect setItem(const std::optional<PublicationItem>& item, SocialFormat format);
    QRect setPixels(QSize pixels);
    // Sets the photo, decoded at any PhotoLevel; null for no photo. If a resampled photo is already
    // shown at the same place, it remains on the picture until the new photo is resampled.
    QRect setPhoto(const QImage& photo);

    // The place for which photo() must be resampled and passed to setResampled(); nothing when that
    // is done. Until then, image() shows a quick drawing of the photo.
    std::optional<PhotoPlace> wantedPlace() const;
    const QImage& photo() const { return m_photo; }
    QRect setResampled(const ResampledPhoto& photo);

    QSize pixels() const { return m_pixels; }
    // Repaints what is out of date. Null without an item or while pixels() is empty.
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
    // The resampled photo and its quick drawing; each may be for an earlier place than place().
    ResampledPhoto m_exact, m_quick;
    QImage m_image;
    QRect m_stale;
};
