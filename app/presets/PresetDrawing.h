#pragma once

#include "model/PublicationItem.h"
#include "model/SocialFormat.h"

#include <QImage>

class PhotoCache;

// Pictures of presets. The functions wait for the photo's thumbnail, so call them on the workers.

QImage drawnItem(const PublicationItem& item, SocialFormat format, QSize pixels,
                 PhotoCache& photos);
// "Aa" in the style, over the middle of the photo.
QImage drawnStyle(const PhotoHandle& photo, const TextLayerDesign& style, QSize pixels,
                  PhotoCache& photos);
