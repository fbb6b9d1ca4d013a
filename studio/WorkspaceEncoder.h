#pragma once

#include "studio/batch/Batch.h"

#include <QByteArray>
#include <QHash>

#include <utility>

// Encodes a batch as the JSON document to store. Keeps the JSON of each item's parts between calls,
// and encodes only the parts that have changed.
class WorkspaceEncoder {
public:
    // The returned document is overwritten by the next call.
    const QByteArray& encode(const Batch& batch);

private:
    struct Pieces {
        // The item that was encoded, in a list of one entry: PublicationItems::shares() tells
        // without a comparison that the batch still has the same item.
        PublicationItems item;
        QByteArray head, analysis, placement, paid, shapes;
        QList<QByteArray> layers;
        QByteArray whole;
    };
    // JSON used for several items in one call of encode(), because an edit often gives many items
    // equal shapes and styles.
    struct Shared {
        QHash<const ShapeLayer*, QByteArray> shapes;    // by address of the shared list data
        // By the index of the layer in its item: the style encoded last, and its JSON from
        // "isVisible" on.
        QList<std::pair<TextLayer, QByteArray>> styles;
    };
    static void update(Pieces& pieces, const PublicationItem& item, Shared& shared);
    static QByteArray textOf(const TextLayer& layer, qsizetype place, Shared& shared);

    QHash<QUuid, Pieces> m_items;
    QByteArray m_document;    // a member, so that the next call reuses its memory
};
