#pragma once

#include "studio/batch/Batch.h"
#include "studio/export/RenderedOutput.h"

#include <QHash>

// The paid renders of all items. For each render this holds two strings: its fingerprint and the
// digest of its pixels, as in RenderedOutput. PublicationItem::paidRenderFingerprints is a copy of
// an item's strings, which exchange() brings up to date. Payments are never removed.
class Payments {
public:
    void add(const QList<RenderedOutput>& outputs);
    // `names`: fingerprints or pixel digests of the item's renders.
    void add(QUuid item, const QSet<QString>& names);

    bool covers(const RenderedOutput& output) const;
    bool isAnyOf(QUuid item) const { return m_fingerprints.contains(item); }

    // Adds the payments that are stored in the items, then writes all known payments into the
    // items. Pass the same `change` for several batches that share items, so that they still share
    // them afterwards.
    void exchange(Batch& batch, PublicationItems::Change& change);
    void exchange(Batch& batch);

private:
    QHash<QUuid, QSet<QString>> m_fingerprints;    // by item; no set is empty
};

// The outputs that are not paid, in the given order.
QList<RenderedOutput> unpaidRenderedOutputs(const QList<RenderedOutput>& outputs,
                                            const Payments& payments);
