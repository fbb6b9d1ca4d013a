#include "studio/WorkspaceEncoder.h"

#include "model/Json.h"
#include "platform/ImageAccess.h"

namespace {

template <typename Layer>
void updateLayers(QList<QByteArray>& texts, const QList<Layer>& known, const QList<Layer>& layers)
{
    QList<QByteArray> updated;
    updated.reserve(layers.size());
    for (qsizetype i = 0; i < layers.size(); ++i) {
        const bool isKnown = i < texts.size() && i < known.size() && known[i] == layers[i];
        updated.append(isKnown ? texts[i] : toJson(layers[i]));
    }
    texts = updated;
}

QByteArray headOf(const PublicationItem& item)
{
    QByteArray head = "{\"id\":" + toJson(item.id) + ",\"url\":" + toJson(item.url);
    if (const auto bookmark = ImageAccess::bookmarkData(item.url))
        head += ",\"bookmarkData\":" + toJson(*bookmark);
    return head;
}

}    // namespace

void WorkspaceEncoder::update(Pieces& pieces, const PublicationItem& item)
{
    const PublicationItem* known = pieces.item.isEmpty() ? nullptr : &pieces.item.first();
    if (!known || known->url != item.url)
        pieces.head = headOf(item);
    if (!known || !(known->analysis == item.analysis))
        pieces.analysis = toJson(item.analysis);
    if (!known || !(known->placement == item.placement))
        pieces.placement = toJson(item.placement);
    if (!known || known->paidRenderFingerprints != item.paidRenderFingerprints)
        pieces.paid = toJson(item.paidRenderFingerprints);
    updateLayers(pieces.layers, known ? known->layers : QList<TextLayer>(), item.layers);
    updateLayers(pieces.shapes, known ? known->shapeLayers : QList<ShapeLayer>(), item.shapeLayers);
    pieces.whole = pieces.head + ",\"analysis\":" + pieces.analysis + ",\"layers\":[" +
                   pieces.layers.join(',') + "],\"shapeLayers\":[" + pieces.shapes.join(',') +
                   "],\"placement\":" + pieces.placement +
                   ",\"paidRenderFingerprints\":" + pieces.paid + '}';
}

const QByteArray& WorkspaceEncoder::encode(const Batch& batch)
{
    QByteArray& document = m_document;
    document.resize(0);
    document += "{\"format\":" + toJson(rawValue(batch.format)) +
                ",\"objective\":" + toJson(batch.objective) +
                ",\"selectedIndex\":" + QByteArray::number(batch.selectedIndex) +
                ",\"selectionAnchorIndex\":" + QByteArray::number(batch.selectionAnchorIndex) +
                ",\"selectedItemIDs\":" + toJson(batch.selectedItemIDs);
    if (!batch.selectedLayerID.isNull())
        document += ",\"selectedLayerID\":" + toJson(batch.selectedLayerID);
    document += ",\"items\":[";
    for (qsizetype i = 0; i < batch.items.size(); ++i) {
        const PublicationItem& item = batch.items[i];
        Pieces& pieces = m_items[item.id];
        if (pieces.item.isEmpty() || !pieces.item.shares(0, batch.items, i)) {
            update(pieces, item);
            pieces.item = batch.items.mid(i, 1);
        }
        if (i > 0)
            document += ',';
        document += pieces.whole;
    }
    document += "]}";
    if (m_items.size() > batch.items.size()) {
        QSet<QUuid> kept;
        for (const PublicationItem& item : batch.items)
            kept.insert(item.id);
        m_items.removeIf([&](const auto& entry) { return !kept.contains(entry.key()); });
    }
    return document;
}
