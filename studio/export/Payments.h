#pragma once

#include "studio/batch/Batch.h"
#include "studio/export/RenderedOutput.h"

#include <QHash>

// Renders that are paid for, by item. A payment is one render by its two names, what it is made of
// and its pixels. This is where payments are kept: what items carry of them
// (`paidRenderFingerprints`) is read into it when they come from elsewhere, and written from it.
// Nothing is ever removed. A value; all states of a batch share what it knows of an item.
class Payments {
public:
    void add(const QList<RenderedOutput>& outputs);
    // Names of renders, of either kind.
    void add(QUuid item, const QSet<QString>& names);

    bool covers(const RenderedOutput& output) const;
    bool isAnyOf(QUuid item) const { return m_names.contains(item); }

    // Learns what the items carry, and has them carry all that is known. `change` is one for all
    // states that share items.
    void exchange(Batch& batch, PublicationItems::Change& change);
    void exchange(Batch& batch);

private:
    QHash<QUuid, QSet<QString>> m_names;    // none is empty
};

// In their order.
QList<RenderedOutput> unpaidRenderedOutputs(const QList<RenderedOutput>& outputs,
                                            const Payments& payments);
