#include "templates/VisualTemplate.h"

#include <cmath>

void TextLayerTemplate::apply(TextLayer& layer) const
{
    layer.isVisible = isVisible;
    layer.frame = frame;
    layer.alignment = alignment;
    design.apply(layer);
}

VisualTemplate VisualTemplate::of(const PublicationItem& item, const QString& name,
                                  SocialFormat format)
{
    VisualTemplate made;
    made.id = QUuid::createUuid();
    made.name = name;
    for (const TextLayer& layer : item.layers) {
        // Takes only the first layer of each slot: a template has one text per slot.
        if (std::ranges::find(made.textLayers, layer.slot, &TextLayerTemplate::slot) ==
            made.textLayers.end())
            made.textLayers.append(TextLayerTemplate(layer));
    }
    made.shapeLayers = item.shapeLayers;
    made.aspectRatio = row(format).aspectRatio;
    return made;
}

void VisualTemplate::apply(PublicationItem& item) const
{
    for (const TextLayerTemplate& text : textLayers) {
        if (TextLayer* layer = item.layer(text.slot))
            text.apply(*layer);
    }
    item.shapeLayers = shapeLayers;
}

bool VisualTemplate::suits(SocialFormat format) const
{
    constexpr double rounding = 0.001;    // other programs write rounded ratios
    return !aspectRatio || std::abs(*aspectRatio - row(format).aspectRatio) < rounding;
}

bool isApplied(const TemplateApplication& design, const PublicationItem& item)
{
    PublicationItem changed = item;
    design(changed);
    if (changed.shapeLayers.size() != item.shapeLayers.size())
        return false;
    for (qsizetype i = 0; i < item.shapeLayers.size(); ++i)
        changed.shapeLayers[i].id = item.shapeLayers[i].id;
    return changed == item;
}
