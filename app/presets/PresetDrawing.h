#pragma once

#include "model/PublicationItem.h"
#include "model/SocialFormat.h"

#include <QImage>

class PhotoCache;

// The pictures of presets. They wait for the photo's thumbnail: on the workers.

QImage drawnItem(const PublicationItem& item, SocialFormat format, QSize pixels,
                 PhotoCache& photos);
// Two letters in the style, over the middle of the photo.
QImage drawnStyle(const PhotoHandle& photo, const TextLayerDesign& style, QSize pixels,
                  PhotoCache& photos);
