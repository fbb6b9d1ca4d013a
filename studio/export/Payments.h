#pragma once

#include "studio/batch/Batch.h"
#include "studio/export/RenderedOutput.h"

#include <QHash>

// Paid renders by item. A payment names one render twice: by the fingerprint of its ingredients and
// by its pixels. An item's `paidRenderFingerprints` are a copy: exchange() reads them from items
// that come from elsewhere, and writes them. Payments are never removed. A value; all states of a
// batch share the set of an item.
class Payments {
public:
    void add(const QList<RenderedOutput>& outputs);
    // `names`: fingerprints or pixels of renders.
    void add(QUuid item, const QSet<QString>& names);

    bool covers(const RenderedOutput& output) const;
    bool isAnyOf(QUuid item) const { return m_names.contains(item); }

    // Learns the payments that the items carry, then writes all known ones into the items. Pass one
    // `change` for all states that share items.
    void exchange(Batch& batch, PublicationItems::Change& change);
    void exchange(Batch& batch);

private:
    QHash<QUuid, QSet<QString>> m_names;    // no set is empty
};

// The outputs that are not paid, in their order.
QList<RenderedOutput> unpaidRenderedOutputs(const QList<RenderedOutput>& outputs,
                                            const Payments& payments);
