#pragma once

#include "model/PublicationItem.h"

#include <QSizeF>

// Increase this only when some item is painted with other pixels than before: renders for which
// users have paid then count as unpaid.
inline constexpr int rendererVersion = 1;

// The inputs of a render that decide its fingerprint.
struct RenderSource {
    const PublicationItem& item;
    QByteArray photoDigest;    // of the photo file's bytes
    QSizeF outputSize;         // pixels
    QSizeF reference;          // design units
};

// A digest of everything that decides the pixels of a render, in painting order, computed without
// painting. What cannot be seen is left out: ids, file names, hidden layers, the style of a box
// that is not drawn, anything outside the canvas. Equal fingerprints mean equal pixels. Equal
// pixels may have different fingerprints, if a layer covers another or two outlines fill the same
// pixels. Takes as long as laying out the texts; layouts are cached. May be called on any thread.
QString renderFingerprint(const RenderSource& source);

// Whether the render's fingerprint is in the set. Lays out no text when everything but the letters
// already differs from every render in the set.
bool isRenderAmong(const QSet<QString>& fingerprints, const RenderSource& source);

// A digest of a PNG from encodePng(), where equal pixels give equal bytes.
QString pixelFingerprint(const QByteArray& png);
