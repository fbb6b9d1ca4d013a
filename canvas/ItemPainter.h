#pragma once

#include "canvas/ItemLayout.h"
#include "canvas/PixelRect.h"

#include <QImage>
#include <QRect>

#include <functional>
#include <optional>

// The place of a photo on a picture, in device pixels.
struct PhotoPlace {
    PixelRect whole;    // the whole photo; beyond the picture where it is enlarged
    QRect shown;        // the part on the picture
    bool operator==(const PhotoPlace&) const = default;
};

// The place of the layout's photo; nothing if it has none or one too far out. `pixels`: size of the
// picture.
std::optional<PhotoPlace> photoPlace(const ItemLayout& layout, QSize pixels);

// The shown part of a photo, resampled to the pixels of the picture.
struct ResampledPhoto {
    qint64 source = 0;    // QImage::cacheKey of the decoded photo
    PhotoPlace place;
    QImage image;
};

// Resamples a photo decoded at any level. Takes longer than painting all the rest. Any thread.
ResampledPhoto resampledPhoto(const QImage& photo, const PhotoPlace& place);

// Device pixels per canvas pixel in a picture of size `pixels`, with the aspect ratio of
// layout.canvas.
double pictureScale(const ItemLayout& layout, QSize pixels);

// Called for each text just before its letters are drawn, when everything below them is painted. A
// painter is active on `picture`: read it only without detaching it (constBits, constScanLine).
using TextObserver = std::function<void(const LaidOutTextLayer&, const QImage& picture)>;

// Paints the item for exports, canvas, tiles and previews. Touches only `part`, in pixels of the
// picture; painting all parts one by one gives the pixels of painting the whole. `photo` is
// resampled for this picture; a null image paints no photo.
void paintItem(QImage& picture, const ItemLayout& layout, const ResampledPhoto& photo,
               const QRect& part, const TextObserver& aboutToDraw = {});

// Paints the whole item. `pixels` has the aspect ratio of layout.canvas; `photo` is decoded at any
// level, null for none.
QImage paintedItem(const ItemLayout& layout, QSize pixels, const QImage& photo,
                   const TextObserver& aboutToDraw = {});
