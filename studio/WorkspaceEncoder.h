#pragma once

#include "studio/Batch.h"

#include <QByteArray>
#include <QHash>

// A batch as the document that is stored. Keeps the text of every layer, shape, copy and placement
// from one time to the next, and writes anew only what changed.
class WorkspaceEncoder {
public:
    // Valid until the next call.
    const QByteArray& encode(const Batch& batch);

private:
    struct Pieces {
        PublicationItems item;    // the one that they were made of, shared with the batch
        QByteArray head, analysis, placement, paid;
        QList<QByteArray> layers, shapes;
        QByteArray whole;
    };
    static void update(Pieces& pieces, const PublicationItem& item);

    QHash<QUuid, Pieces> m_items;
    QByteArray m_document;    // keeps its room
};
