#include "studio/export/Payments.h"

void Payments::add(const QList<RenderedOutput>& outputs)
{
    for (const RenderedOutput& output : outputs)
        add(output.item.id, {output.fingerprint, output.pixels});
}

void Payments::add(QUuid item, const QSet<QString>& names)
{
    if (names.isEmpty())
        return;
    QSet<QString>& known = m_fingerprints[item];
    if (known.isEmpty())
        known = names;    // shares the data of `names`
    else if (!known.contains(names))
        known.unite(names);
}

bool Payments::covers(const RenderedOutput& output) const
{
    const auto known = m_fingerprints.constFind(output.item.id);
    return known != m_fingerprints.cend() &&
           (known->contains(output.fingerprint) || known->contains(output.pixels));
}

void Payments::exchange(Batch& batch, PublicationItems::Change& change)
{
    for (qsizetype i = 0; i < batch.items.size(); ++i) {
        const PublicationItem& item = batch.items[i];
        add(item.id, item.paidRenderFingerprints);
        const QSet<QString> known = m_fingerprints.value(item.id);
        if (item.paidRenderFingerprints == known)
            continue;
        batch.items.edit(i, change,
                         [&](PublicationItem& edited) { edited.paidRenderFingerprints = known; });
    }
}

void Payments::exchange(Batch& batch)
{
    PublicationItems::Change change;
    exchange(batch, change);
}

QList<RenderedOutput> unpaidRenderedOutputs(const QList<RenderedOutput>& outputs,
                                            const Payments& payments)
{
    QList<RenderedOutput> unpaid = outputs;
    unpaid.removeIf([&](const RenderedOutput& output) { return payments.covers(output); });
    return unpaid;
}
