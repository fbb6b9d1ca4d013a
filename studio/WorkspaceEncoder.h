#pragma once

#include "studio/batch/Batch.h"

#include <QByteArray>
#include <QHash>

#include <utility>

// A batch as the document that is stored. Keeps the text of every layer, shape, copy and placement
// from one time to the next, and writes anew only what changed.
class WorkspaceEncoder {
public:
    // Valid until the next call.
    const QByteArray& encode(const Batch& batch);

private:
    struct Pieces {
        PublicationItems item;    // the one that they were made of, shared with the batch
        QByteArray head, analysis, placement, paid, shapes;
        QList<QByteArray> layers;
        QByteArray whole;
    };
    // What many items of a batch have in common after an edit that reached them all.
    struct Shared {
        QHash<const ShapeLayer*, QByteArray> shapes;    // by the list's own memory
        QList<std::pair<TextLayer, QByteArray>>
            styles;    // the last one of each place, from isVisible on
    };
    static void update(Pieces& pieces, const PublicationItem& item, Shared& shared);
    static QByteArray textOf(const TextLayer& layer, qsizetype place, Shared& shared);

    QHash<QUuid, Pieces> m_items;
    QByteArray m_document;    // keeps its room
};
