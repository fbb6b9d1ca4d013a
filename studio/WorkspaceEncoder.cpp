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
    const bool isNew = pieces.whole.isEmpty();
    if (isNew || pieces.item.url != item.url)
        pieces.head = headOf(item);
    if (isNew || !(pieces.item.analysis == item.analysis))
        pieces.analysis = toJson(item.analysis);
    if (isNew || !(pieces.item.placement == item.placement))
        pieces.placement = toJson(item.placement);
    if (isNew || pieces.item.paidRenderFingerprints != item.paidRenderFingerprints)
        pieces.paid = toJson(item.paidRenderFingerprints);
    updateLayers(pieces.layers, pieces.item.layers, item.layers);
    updateLayers(pieces.shapes, pieces.item.shapeLayers, item.shapeLayers);
    pieces.item = item;

    pieces.whole = pieces.head + ",\"analysis\":" + pieces.analysis + ",\"layers\":[" +
                   pieces.layers.join(',') + "],\"shapeLayers\":[" + pieces.shapes.join(',') +
                   "],\"placement\":" + pieces.placement +
                   ",\"paidRenderFingerprints\":" + pieces.paid + '}';
}

QByteArray WorkspaceEncoder::encode(const Batch& batch)
{
    QByteArray document;
    document.reserve(m_lastSize + m_lastSize / 8);
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
        if (pieces.whole.isEmpty() || !(pieces.item == item))
            update(pieces, item);
        if (i > 0)
            document += ',';
        document += pieces.whole;
    }
    document += "]}";
    m_lastSize = document.size();
    if (m_items.size() > batch.items.size()) {
        QSet<QUuid> kept;
        for (const PublicationItem& item : batch.items)
            kept.insert(item.id);
        m_items.removeIf([&](const auto& entry) { return !kept.contains(entry.key()); });
    }
    return document;
}
