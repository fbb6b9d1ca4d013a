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

// The file's name without its last extension.
QString filenameOf(const QUrl& url);

// One photo of the batch with everything laid over it.
struct PublicationItem {
    QUuid id;    // fixed for the item's life
    QUrl url;    // the file the photo was read from
    PhotoHandle image;
    GeneratedCopy analysis;
    QList<TextLayer> layers;          // one per slot, in drawing order
    QList<ShapeLayer> shapeLayers;    // in drawing order, all below the texts
    ImagePlacement placement;
    QSet<QString> paidRenderFingerprints;    // see renderFingerprint()

    // A new item with the placeholder copy and its default layers.
    static PublicationItem make(const QUrl& url, const PhotoHandle& image);
    // The default text layers with the texts of `copy`, with new ids; equal for every format.
    static QList<TextLayer> defaultLayers(const GeneratedCopy& copy);

    QString filename() const { return filenameOf(url); }

    // The first layer of the slot; null when the item has none.
    TextLayer* layer(CopySlot slot);
    bool hasLayer(QUuid layerId) const;    // a text layer or a shape

    bool operator==(const PublicationItem&) const = default;
};

using PublicationItems = SharedList<PublicationItem>;
