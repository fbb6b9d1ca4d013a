#pragma once

#include "canvas/TextFitting.h"
#include "model/PublicationItem.h"
#include "model/SocialFormat.h"
#include "platform/photo/PhotoDecoder.h"

#include <QByteArray>
#include <QImage>

#include <functional>
#include <optional>

// Renders an item as a picture of any output size, on the caller's thread, which waits while the
// photo is decoded. A failure returns nothing; telling the user is left to the caller.
namespace ExportCanvasRenderer {

// Returns the pixels of a photo decoded at a level; null when it cannot be decoded.
using PhotoSource = std::function<QImage(const PhotoHandle&, PhotoLevel)>;
QImage decodedFromFile(const PhotoHandle& photo, PhotoLevel level);

// The coarsest level at which the decoded photo is no smaller than it is drawn. It depends only on
// the arguments, never on levels that are already decoded, so that two exports of an item are
// equal. `shown`: screen pixels per canvas pixel; 1 for an export.
PhotoLevel photoLevel(const PhotoHandle& photo, const ImagePlacement& placement, QSizeF canvas,
                      double shown = 1);

// Renders the item. `outputSize` is in pixels, each side rounded; `referenceCanvasSize` is in
// design units.
std::optional<QImage> bitmap(const PublicationItem& item, QSizeF outputSize,
                             QSizeF referenceCanvasSize,
                             const PhotoSource& source = decodedFromFile);

std::optional<QByteArray> pngData(const PublicationItem& item, SocialFormat format,
                                  QSizeF referenceCanvasSize,
                                  const PhotoSource& source = decodedFromFile);
std::optional<QByteArray> pngData(const PublicationItem& item, QSizeF outputSize,
                                  QSizeF referenceCanvasSize,
                                  const PhotoSource& source = decodedFromFile);
// Encodes with cwebp and waits for it. `quality`: 0..1.
std::optional<QByteArray> webPData(const PublicationItem& item, QSizeF outputSize,
                                   QSizeF referenceCanvasSize, double quality,
                                   const PhotoSource& source = decodedFromFile);

}    // namespace ExportCanvasRenderer
