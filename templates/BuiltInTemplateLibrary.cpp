#include "templates/BuiltInTemplateLibrary.h"

#include <QDir>

using namespace Qt::StringLiterals;

BuiltInTemplateLibrary::BuiltInTemplateLibrary(const QString& folder)
{
    for (const QFileInfo& file : QDir(folder).entryInfoList({u"*.json"_s}, QDir::Files)) {
        if (const DefinitionFile read = readDefinitionFile(file.filePath()); read.definition)
            m_definitions.append(*read.definition);
    }
    std::ranges::stable_sort(m_definitions, {}, &JSONVisualTemplateDefinition::order);
}

QList<JSONVisualTemplateDefinition> BuiltInTemplateLibrary::definitions(SocialFormat format) const
{
    QList<JSONVisualTemplateDefinition> found;
    std::ranges::copy_if(m_definitions, std::back_inserter(found),
                         [format](const auto& definition) { return definition.matches(format); });
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
    if (from.previewPNG && isWebPData(*from.previewPNG))
        definition.previewWebPBase64 = from.previewPNG;
    else
        definition.previewPNGBase64 = from.previewPNG;
    return definition;
}

bool BuiltInTemplateLibrary::isWebPData(QByteArrayView bytes)
{
    return bytes.size() >= 12 && bytes.first(4) == "RIFF" && bytes.sliced(8, 4) == "WEBP";
}
