#pragma once

#include "canvas/ItemLayout.h"

#include <QImage>
#include <QRect>

class QPainter;

// The photo as it was last resampled, so that repainting with the layers elsewhere does not do it
// again.
struct ResampledPhoto {
    qint64 source = 0;    // QImage::cacheKey of the decoded photo
    QRect place, window;
    QImage image;
};

// The one painter of the program: export, canvas, tiles and previews all call it. Paints on an
// image through the painter's transform, which may move and scale evenly. `photo` is the decoded
// photo at any level, null for none; it is resampled once, to its rectangle rounded to whole device
// pixels.
void paintItem(QPainter& painter, const ItemLayout& layout, const QImage& photo,
               ResampledPhoto* remembered = nullptr);

// The layout painted into a picture of `pixels`, which has the shape of its canvas.
QImage paintedItem(const ItemLayout& layout, QSize pixels, const QImage& photo,
                   ResampledPhoto* remembered = nullptr);
