#include "model/PublicationItem.h"

#include <QFileInfo>

namespace {

struct DefaultLayer {
    CopySlot slot;
    bool visible;
    double x, y, width, height;
};

// Frames in fractions of the canvas. The tagline exists but is hidden, so that a template or the
// user only has to show it.
constexpr std::array defaultLayerTable{
    DefaultLayer{CopySlot::title, true, 0.11, 0.30, 0.78, 0.16},
    DefaultLayer{CopySlot::subtitle, true, 0.16, 0.47, 0.68, 0.13},
    DefaultLayer{CopySlot::tagline, false, 0.21, 0.61, 0.58, 0.10},
    DefaultLayer{CopySlot::callToAction, true, 0.31, 0.72, 0.38, 0.08},
};

}    // namespace

PublicationItem PublicationItem::make(const QUrl& url, const PhotoHandle& image)
{
    PublicationItem item;
    item.id = QUuid::createUuid();
    item.url = url;
    item.image = image;
    item.analysis = GeneratedCopy::placeholder();
    item.layers = defaultLayers(item.analysis);
    return item;
}

QList<TextLayer> PublicationItem::defaultLayers(const GeneratedCopy& copy)
{
    QList<TextLayer> layers;
    for (const DefaultLayer& row : defaultLayerTable) {
        const CodableRect frame(row.x, row.y, row.width, row.height);
        layers.append(
            TextLayer(QUuid::createUuid(), row.slot, copy.text(row.slot), row.visible, frame));
    }
    return layers;
}

QString filenameOf(const QUrl& url)
{
    const QString name = url.fileName();
    const auto dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.left(dot) : name;
}

QString shapeName(const QList<ShapeLayer>& shapes, QUuid shapeId)
{
    const auto shape = std::ranges::find(shapes, shapeId, &ShapeLayer::id);
    if (shape == shapes.end())
        return {};
    const auto isAlike = [shape](const ShapeLayer& other) { return other.kind == shape->kind; };
    const QString kind = rawValue(shape->kind);
    if (std::ranges::count_if(shapes, isAlike) == 1)
        return kind;
    const auto number = std::count_if(shapes.begin(), std::next(shape), isAlike);
    return QStringLiteral("%1 %2").arg(kind).arg(number);
}

TextLayer* PublicationItem::layer(CopySlot slot)
{
    const auto found = std::ranges::find(layers, slot, &TextLayer::slot);
    return found == layers.end() ? nullptr : &*found;
}

QString PublicationItem::layerName(QUuid layerId) const
{
    const auto text = std::ranges::find(layers, layerId, &TextLayer::id);
    if (text != layers.end())
        return row(text->slot).displayName.toString();
    return shapeName(shapeLayers, layerId);
}

bool PublicationItem::hasLayer(QUuid layerId) const
{
    const auto isIt = [layerId](const auto& candidate) { return candidate.id == layerId; };
    return std::ranges::any_of(layers, isIt) || std::ranges::any_of(shapeLayers, isIt);
}
