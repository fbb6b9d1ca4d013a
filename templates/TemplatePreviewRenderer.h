#pragma once

#include "canvas/ExportCanvasRenderer.h"

// Draws small pictures of items, to be stored with templates. `canvasSize` is the size both in
// pixels and in design units, so sizes in design units, such as the smallest type, are not scaled
// down. Decodes the photo before returning; gives nothing if it cannot be read.
namespace TemplatePreviewRenderer {

using ExportCanvasRenderer::decodedFromFile;
using ExportCanvasRenderer::PhotoSource;

// A size `width` pixels wide with the format's aspect ratio.
QSizeF previewSize(SocialFormat format, double width = 540);

// `canvasSize` is previewSize() if not given.
std::optional<QByteArray> pngData(const PublicationItem& item, SocialFormat format,
                                  std::optional<QSizeF> canvasSize = {},
                                  const PhotoSource& source = decodedFromFile);
std::optional<QByteArray> webPData(const PublicationItem& item, SocialFormat format,
                                   std::optional<QSizeF> canvasSize = {},
                                   const PhotoSource& source = decodedFromFile);
// `quality` 0..1.
std::optional<QByteArray> jpegData(const PublicationItem& item, SocialFormat format,
                                   std::optional<QSizeF> canvasSize, double quality,
                                   const PhotoSource& source = decodedFromFile);

struct Encoded {
    QByteArray data;
    bool isWebP = false;    // else JPEG or PNG
};

// A picture 360 pixels wide: WebP if it can be made, else JPEG, else PNG.
std::optional<Encoded> compactData(const PublicationItem& item, SocialFormat format,
                                   const PhotoSource& source = decodedFromFile);

}    // namespace TemplatePreviewRenderer
