#pragma once

#include "model/PublicationItem.h"

#include <QSizeF>

// Increase this only when some item is painted with other pixels than before: renders that users
// have paid for then count as unpaid.
inline constexpr int rendererVersion = 1;

// One render, as far as a fingerprint needs it.
struct RenderSource {
    const PublicationItem& item;
    QByteArray photoDigest;    // of the photo file's bytes
    QSizeF outputSize;         // pixels
    QSizeF reference;          // design units
};

// A digest of everything that decides the pixels, in painting order, computed without painting.
// Left out is what cannot be seen: ids, hidden layers, the style of a box that is not drawn, file
// names, what lies beside the canvas. Equal fingerprints mean equal pixels. Equal pixels may have
// different fingerprints, when something visible covers something else or two outlines fill the
// same pixels. Any thread. Takes as long as laying out the texts, whose results are remembered.
QString renderFingerprint(const RenderSource& source);

// Whether the render's fingerprint is in the set. Lays out no text when the rest of the render
// already differs from all of them.
bool isRenderAmong(const QSet<QString>& fingerprints, const RenderSource& source);

// A digest of a PNG from encodePng(), where equal pixels give equal bytes.
QString pixelFingerprint(const QByteArray& png);
