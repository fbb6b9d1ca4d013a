#pragma once

#include "model/PublicationItem.h"
#include "model/SocialFormat.h"

#include <QImage>

class PhotoCache;

// These functions draw the pictures of presets. Call them on a worker thread: they may wait until
// the thumbnail of the photo is decoded.

QImage drawnItem(const PublicationItem& item, SocialFormat format, QSize pixels,
                 PhotoCache& photos);
// The same from the photo itself, decoded as large as the picture needs.
QImage drawnLarge(const PublicationItem& item, SocialFormat format, QSize pixels,
                  PhotoCache& photos);
// Draws "Aa" in `style` over the middle of the photo.
QImage drawnStyle(const PhotoHandle& photo, const TextLayerDesign& style, QSize pixels,
                  PhotoCache& photos);
