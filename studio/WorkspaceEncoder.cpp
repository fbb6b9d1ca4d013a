#include "studio/WorkspaceEncoder.h"

#include "model/Json.h"
#include "platform/photo/ImageAccess.h"

namespace {

QByteArray headOf(const PublicationItem& item)
{
    QByteArray head = "{\"id\":" + toJson(item.id) + ",\"url\":" + toJson(item.url);
    if (const auto bookmark = ImageAccess::bookmarkData(item.url))
        head += ",\"bookmarkData\":" + toJson(*bookmark);
    return head;
}

}    // namespace

// The JSON of a layer. Id, slot and text come first. The rest is usually equal to that of the layer
// at the same `place` in the previous item, and is then reused.
QByteArray WorkspaceEncoder::textOf(const TextLayer& layer, qsizetype place, Shared& shared)
{
    const QByteArray head = "{\"id\":" + toJson(layer.id) +
                            ",\"slot\":" + toJson(rawValue(layer.slot)) +
                            ",\"text\":" + toJson(layer.text);
    TextLayer style = layer;
    style.id = {};
    style.text.clear();
    style.slot = {};
    shared.styles.resize(std::max(shared.styles.size(), place + 1));
    auto& [known, rest] = shared.styles[place];
    if (rest.isEmpty() || !(known == style)) {
        rest = toJson(layer).sliced(head.size());
        known = style;
    }
    return head + rest;
}

void WorkspaceEncoder::update(Pieces& pieces, const PublicationItem& item, Shared& shared)
{
    const PublicationItem* known = pieces.item.isEmpty() ? nullptr : &pieces.item.first();
    if (!known || known->url != item.url)
        pieces.head = headOf(item);
    if (!known || !(known->analysis == item.analysis) || known->isCaptionOwn != item.isCaptionOwn) {
        pieces.analysis =
            toJson(item.analysis) + ",\"isCaptionOwn\":" + (item.isCaptionOwn ? "true" : "false");
    }
    if (!known || !(known->placement == item.placement))
        pieces.placement = toJson(item.placement);
    if (!known || known->paidRenderFingerprints != item.paidRenderFingerprints)
        pieces.paid = toJson(item.paidRenderFingerprints);
    pieces.layers.resize(item.layers.size());
    for (qsizetype i = 0; i < item.layers.size(); ++i) {
        if (!known || i >= known->layers.size() || !(known->layers[i] == item.layers[i]))
            pieces.layers[i] = textOf(item.layers[i], i, shared);
    }
    if (!known || known->shapeLayers != item.shapeLayers) {
        QByteArray& shapes = shared.shapes[item.shapeLayers.constData()];
        if (shapes.isEmpty())
            shapes = toJson(item.shapeLayers);
        pieces.shapes = shapes;
    }
    pieces.whole = pieces.head + ",\"analysis\":" + pieces.analysis + ",\"layers\":[" +
                   pieces.layers.join(',') + "],\"shapeLayers\":" + pieces.shapes +
                   ",\"placement\":" + pieces.placement +
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
    Shared shared;
    for (qsizetype i = 0; i < batch.items.size(); ++i) {
        const PublicationItem& item = batch.items[i];
        Pieces& pieces = m_items[item.id];
        if (pieces.item.isEmpty() || !pieces.item.shares(0, batch.items, i)) {
            update(pieces, item, shared);
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
