#pragma once

#include "studio/Batch.h"

#include <QByteArray>
#include <QHash>

// A batch as the document that is stored. Keeps the text of every layer, shape, copy and placement
// from one time to the next, and writes anew only what changed.
class WorkspaceEncoder {
public:
    QByteArray encode(const Batch& batch);

private:
    struct Pieces {
        PublicationItem item;    // what they were made of
        QByteArray head, analysis, placement, paid;
        QList<QByteArray> layers, shapes;
        QByteArray whole;
    };
    static void update(Pieces& pieces, const PublicationItem& item);

    QHash<QUuid, Pieces> m_items;
    qsizetype m_lastSize = 0;
};
