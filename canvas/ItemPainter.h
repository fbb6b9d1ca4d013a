#pragma once

#include "canvas/ItemLayout.h"
#include "canvas/PixelRect.h"

#include <QImage>
#include <QRect>

#include <functional>
#include <optional>

// Where a photo lies on a picture, in device pixels.
struct PhotoPlace {
    PixelRect whole;    // the whole photo; may reach beyond the picture
    QRect shown;        // the part inside the picture
    bool operator==(const PhotoPlace&) const = default;
};

// Where the layout's photo lies on a picture of size `pixels`. Nothing if the layout has no photo
// or its coordinates are too large.
std::optional<PhotoPlace> photoPlace(const ItemLayout& layout, QSize pixels);

// The part of a photo inside a picture, resampled to the pixels of the picture.
struct ResampledPhoto {
    qint64 source = 0;    // QImage::cacheKey of the decoded photo
    PhotoPlace place;
    QImage image;
};

// Resamples a photo, decoded at any PhotoLevel, for `place`. Takes longer than painting all the
// rest of an item. May be called on any thread.
ResampledPhoto resampledPhoto(const QImage& photo, const PhotoPlace& place);

// Device pixels per canvas pixel. `pixels`: size of the picture, with the aspect ratio of
// layout.canvas.
double pictureScale(const ItemLayout& layout, QSize pixels);

// Called for each text when everything below its letters is painted, but the letters are not. A
// painter is active on `picture`: read the pixels only with functions that do not detach it
// (constBits(), constScanLine()).
using TextObserver = std::function<void(const LaidOutTextLayer&, const QImage& picture)>;

// Paints the item; used for exports, the canvas on screen, tiles and previews. Changes only the
// pixels inside `part`; painting part after part gives the same pixels as painting all at once.
// `photo` must have been resampled for this picture; if its image is null, no photo is painted.
void paintItem(QImage& picture, const ItemLayout& layout, const ResampledPhoto& photo,
               const QRect& part, const TextObserver& aboutToDraw = {});

// Paints the whole item into a new picture. `pixels`: size of the picture, with the aspect ratio of
// layout.canvas. `photo`: decoded at any PhotoLevel, or null for no photo. The result is null if
// the canvas is empty or memory is short.
QImage paintedItem(const ItemLayout& layout, QSize pixels, const QImage& photo,
                   const TextObserver& aboutToDraw = {});
