#pragma once

#include "canvas/TextFitting.h"
#include "model/PublicationItem.h"
#include "model/SocialFormat.h"
#include "platform/PhotoDecoder.h"

#include <QByteArray>
#include <QImage>

#include <functional>
#include <optional>

// Turns an item into a finished picture at any output size. Holds no state, runs on the caller's
// thread, waits for the decoding. Failures give nothing; callers decide what to say.
namespace ExportCanvasRenderer {

// Where the pixels of a photo come from: decoded at a level, null when it cannot be.
using PhotoSource = std::function<QImage(const PhotoHandle&, PhotoLevel)>;
QImage decodedFromFile(const PhotoHandle& photo, PhotoLevel level);

// The level an output needs: the coarsest that covers what is drawn. Depends on the photo, its
// placement and the output size alone, never on what happens to be decoded already: that is what
// makes two exports equal. `shown`: screen pixels per canvas pixel, 1 for an export.
PhotoLevel photoLevel(const PhotoHandle& photo, const ImagePlacement& placement, QSizeF canvas,
                      double shown = 1);

// `outputSize` in pixels, each side rounded to the nearest; `referenceCanvasSize` in design units.
std::optional<QImage> bitmap(const PublicationItem& item, QSizeF outputSize,
                             QSizeF referenceCanvasSize,
                             const PhotoSource& source = decodedFromFile);

std::optional<QByteArray> pngData(const PublicationItem& item, SocialFormat format,
                                  QSizeF referenceCanvasSize,
                                  const PhotoSource& source = decodedFromFile);
std::optional<QByteArray> pngData(const PublicationItem& item, QSizeF outputSize,
                                  QSizeF referenceCanvasSize,
                                  const PhotoSource& source = decodedFromFile);
// `quality` 0..1.
std::optional<QByteArray> webPData(const PublicationItem& item, QSizeF outputSize,
                                   QSizeF referenceCanvasSize, double quality,
                                   const PhotoSource& source = decodedFromFile);

}    // namespace ExportCanvasRenderer
