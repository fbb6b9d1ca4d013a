#pragma once

#include "canvas/ExportCanvasRenderer.h"

// Small pictures of items, to be stored with templates. The size given is both the output and the
// reference, so that type comes out as large as on the canvas. Nothing when the photo cannot be
// read. Waits for the decoding.
namespace TemplatePreviewRenderer {

using ExportCanvasRenderer::decodedFromFile;
using ExportCanvasRenderer::PhotoSource;

// `width` pixels wide, in the format's shape.
QSizeF previewSize(SocialFormat format, double width = 540);

// Without `canvasSize`: previewSize().
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

// 360 wide, as WebP, else as JPEG, else as PNG.
std::optional<Encoded> compactData(const PublicationItem& item, SocialFormat format,
                                   const PhotoSource& source = decodedFromFile);

}    // namespace TemplatePreviewRenderer
