#pragma once

#include "canvas/TextFitting.h"
#include "model/PublicationItem.h"
#include "model/SocialFormat.h"
#include "platform/photo/PhotoDecoder.h"

#include <QByteArray>
#include <QImage>

#include <functional>
#include <optional>

// Renders an item as a picture of any output size. Holds no state, runs on the caller's thread,
// waits for the decoding. A failure returns nothing; the caller tells the user.
namespace ExportCanvasRenderer {

// Gives the pixels of a photo decoded at a level; null when it cannot be decoded.
using PhotoSource = std::function<QImage(const PhotoHandle&, PhotoLevel)>;
QImage decodedFromFile(const PhotoHandle& photo, PhotoLevel level);

// The level an output needs: the coarsest that covers the drawn photo. It depends only on the
// arguments, never on what is decoded already, so that two exports are equal. `shown`: screen
// pixels per canvas pixel, 1 for an export.
PhotoLevel photoLevel(const PhotoHandle& photo, const ImagePlacement& placement, QSizeF canvas,
                      double shown = 1);

// Renders the item. `outputSize` in pixels, each side rounded; `referenceCanvasSize` in design
// units.
std::optional<QImage> bitmap(const PublicationItem& item, QSizeF outputSize,
                             QSizeF referenceCanvasSize,
                             const PhotoSource& source = decodedFromFile);

std::optional<QByteArray> pngData(const PublicationItem& item, SocialFormat format,
                                  QSizeF referenceCanvasSize,
                                  const PhotoSource& source = decodedFromFile);
std::optional<QByteArray> pngData(const PublicationItem& item, QSizeF outputSize,
                                  QSizeF referenceCanvasSize,
                                  const PhotoSource& source = decodedFromFile);
// Waits for cwebp. `quality` 0..1.
std::optional<QByteArray> webPData(const PublicationItem& item, QSizeF outputSize,
                                   QSizeF referenceCanvasSize, double quality,
                                   const PhotoSource& source = decodedFromFile);

}    // namespace ExportCanvasRenderer
