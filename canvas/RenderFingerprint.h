#pragma once

#include "model/PublicationItem.h"

#include <QSizeF>

// Rises when the same item comes out with other pixels than before, and only then: everything that
// users have paid for counts as unpaid afterwards.
inline constexpr int rendererVersion = 1;

// What one render is made of, as far as a fingerprint needs it.
struct RenderSource {
    const PublicationItem& item;
    QByteArray photoDigest;    // of the photo's content
    QSizeF outputSize;         // pixels
    QSizeF reference;          // design units
};

// Names a render without drawing it: a digest of what reaches the pixels, in the order in which it
// is painted. What cannot be seen is not in it: ids, hidden layers, the style of a box that is not
// drawn, names of files, what lies beside the canvas. Equal fingerprints are equal pixels; the
// other way round not where something visible covers another thing, or where two outlines fill the
// same pixels. Any thread; takes as long as laying out the texts, which is remembered.
QString renderFingerprint(const RenderSource& source);

// Whether the render's fingerprint is one of these: no text is laid out where all the rest says
// already that it is not.
bool isRenderAmong(const QSet<QString>& fingerprints, const RenderSource& source);

// Names the pixels of a file that encodePng() made: the same pixels give the same bytes.
QString pixelFingerprint(const QByteArray& png);
