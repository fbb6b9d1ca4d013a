#pragma once

#include "model/GeneratedCopy.h"
#include "model/ImagePlacement.h"
#include "model/PhotoHandle.h"
#include "model/ShapeLayer.h"
#include "model/SharedList.h"
#include "model/TextLayer.h"

#include <QList>
#include <QSet>
#include <QUrl>

// The name of the file at `url` without its last extension.
QString filenameOf(const QUrl& url);

// What the user calls a shape: its kind, with a number if several in `shapes` are of that kind.
// Empty for another id.
QString shapeName(const QList<ShapeLayer>& shapes, QUuid shapeId);

// One photo of the batch with everything laid over it.
struct PublicationItem {
    QUuid id;    // never changes
    QUrl url;    // the file that the photo was read from
    PhotoHandle image;
    GeneratedCopy analysis;
    bool isCaptionOwn = false;        // the user wrote the caption in `analysis`
    QList<TextLayer> layers;          // one per slot, in drawing order
    QList<ShapeLayer> shapeLayers;    // in drawing order, all below the texts
    ImagePlacement placement;
    QSet<QString> paidRenderFingerprints;    // see renderFingerprint()

    // Makes an item with a new id, the placeholder texts and the default layers.
    static PublicationItem make(const QUrl& url, const PhotoHandle& image);
    // The default text layers with new ids and the texts of `copy`. Their frames are the same for
    // every format.
    static QList<TextLayer> defaultLayers(const GeneratedCopy& copy);

    QString filename() const { return filenameOf(url); }

    // The first layer with this slot; null if there is none.
    TextLayer* layer(CopySlot slot);
    bool hasLayer(QUuid layerId) const;    // looks among the text layers and the shapes
    // What the user calls a text or a shape; empty for another id.
    QString layerName(QUuid layerId) const;

    bool operator==(const PublicationItem&) const = default;
};

using PublicationItems = SharedList<PublicationItem>;
