#include "templates/BuiltInTemplateLibrary.h"

BuiltInTemplateLibrary::BuiltInTemplateLibrary(const QString& folder)
    : m_pack(readPack(folder).pack.value_or(TemplatePack()))
{
}

QList<JSONVisualTemplateDefinition> BuiltInTemplateLibrary::definitions(SocialFormat format) const
{
    QList<JSONVisualTemplateDefinition> found;
    for (const PackDesign& design : m_pack.designs) {
        if (design.definition.matches(format))
            found.append(design.definition);
    }
    return found;
}

JSONVisualTemplateDefinition BuiltInTemplateLibrary::templateDefinition(const VisualTemplate& from,
                                                                        const QString& name,
                                                                        SocialFormat format) const
{
    JSONVisualTemplateDefinition definition;
    definition.id = from.id;
    definition.name = name;
    definition.format = row(format).templateKey.toString();
    if (from.order) {
        definition.order = *from.order;
    } else {
        for (const JSONVisualTemplateDefinition& other : definitions(format))
            definition.order = std::max(definition.order, other.order + 1);
    }
    for (const TextLayerTemplate& text : from.textLayers)
        definition.textLayers.append(JSONTextLayer(text));
    for (const ShapeLayerSnapshot& shape : from.shapeLayers)
        definition.shapeLayers.append(JSONShapeLayer(shape));
    return definition;
}

bool BuiltInTemplateLibrary::isWebPData(QByteArrayView bytes)
{
    return bytes.size() >= 12 && bytes.first(4) == "RIFF" && bytes.sliced(8, 4) == "WEBP";
}
