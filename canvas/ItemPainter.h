#pragma once

#include "canvas/ItemLayout.h"
#include "canvas/PixelRect.h"

#include <QImage>
#include <QRect>

#include <functional>
#include <optional>

// Where a photo falls on a picture, in device pixels.
struct PhotoPlace {
    PixelRect whole;    // reaches beyond the picture where the photo is enlarged
    QRect shown;        // its part on the picture
    bool operator==(const PhotoPlace&) const = default;
};

// Nothing when there is no photo. `pixels`: of the picture.
std::optional<PhotoPlace> photoPlace(const ItemLayout& layout, QSize pixels);

// The part of a photo that a picture shows, in the pixels of the picture.
struct ResampledPhoto {
    qint64 source = 0;    // QImage::cacheKey of the decoded photo
    PhotoPlace place;
    QImage image;
};

// `photo`: decoded at any level. Takes longer than all the rest of a picture; any thread.
ResampledPhoto resampledPhoto(const QImage& photo, const PhotoPlace& place);

// Device pixels per canvas pixel of a picture that has the shape of the layout's canvas.
double pictureScale(const ItemLayout& layout, QSize pixels);

// Told of each text on the picture just before its letters are drawn: everything that they will lie
// on is there. The picture is being painted on: it may be read, through what does not detach it.
using TextObserver = std::function<void(const LaidOutTextLayer&, const QImage& picture)>;

// The one painter of the program: export, canvas, tiles and previews all call it. Paints the
// `part` of the picture, in its pixels, and nothing beside it; painted part by part a picture comes
// out as painted at once. `photo` is for the size of the picture, null for none.
void paintItem(QImage& picture, const ItemLayout& layout, const ResampledPhoto& photo,
               const QRect& part, const TextObserver& aboutToDraw = {});

// A picture of the whole item; `pixels` has the shape of its canvas. `photo` is the decoded photo
// at any level, null for none.
QImage paintedItem(const ItemLayout& layout, QSize pixels, const QImage& photo,
                   const TextObserver& aboutToDraw = {});
