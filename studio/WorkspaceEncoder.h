#pragma once

#include "studio/batch/Batch.h"

#include <QByteArray>
#include <QHash>

#include <utility>

// Writes a batch as the JSON document that is stored. Keeps the JSON of every layer, shape, copy
// and placement from one call to the next, and writes anew only what changed.
class WorkspaceEncoder {
public:
    // The document is valid until the next call.
    const QByteArray& encode(const Batch& batch);

private:
    struct Pieces {
        // The encoded item: a list of one, which shares the item's data with the batch.
        PublicationItems item;
        QByteArray head, analysis, placement, paid, shapes;
        QList<QByteArray> layers;
        QByteArray whole;
    };
    // JSON that the items of one encode() share: an edit often gives many items equal shapes and
    // styles.
    struct Shared {
        QHash<const ShapeLayer*, QByteArray> shapes;    // by the address of the list's data
        // By place in the item: the style written last, and its JSON from "isVisible" on.
        QList<std::pair<TextLayer, QByteArray>> styles;
    };
    static void update(Pieces& pieces, const PublicationItem& item, Shared& shared);
    static QByteArray textOf(const TextLayer& layer, qsizetype place, Shared& shared);

    QHash<QUuid, Pieces> m_items;
    QByteArray m_document;    // keeps its capacity from call to call
};
