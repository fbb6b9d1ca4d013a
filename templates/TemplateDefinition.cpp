#include "templates/TemplateDefinition.h"

#include "model/GuardedJson.h"
#include "model/RecordJson.h"
#include "templates/TemplateName.h"

#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 largestFile = qint64(16) << 20;
// Limits far above what any design needs, but low enough for fast painting.
constexpr qsizetype mostLayers = 500, longestFontName = 200, longestWord = 40;

template <typename T>
void take(T& field, const std::optional<T>& value)
{
    if (value)
        field = *value;
}

void takeColor(CodableColor& field, const std::optional<QString>& hex)
{
    if (hex)
        take(field, CodableColor::fromHexRGB(*hex));
}

void dropLonger(std::optional<QString>& text, qsizetype longest)
{
    if (text && text->size() > longest)
        text.reset();
}

// Drops texts that are too long to mean anything, so that a definition takes little memory.
void dropLongTexts(JSONVisualTemplateDefinition& definition)
{
    dropLonger(definition.format, longestWord);
    definition.textLayers.removeIf(
        [](const JSONTextLayer& text) { return text.slot.size() > longestWord; });
    for (JSONTextLayer& text : definition.textLayers) {
        dropLonger(text.fontName, longestFontName);
        for (auto* color : {&text.foreground, &text.background, &text.shadowColor})
            dropLonger(*color, longestWord);
    }
    for (JSONShapeLayer& shape : definition.shapeLayers) {
        shape.fill.truncate(longestWord);
        dropLonger(shape.stroke, longestWord);
    }
}

}    // namespace

namespace json {

template <>
struct JsonFields<JSONTextLayer> {
    using Text = JSONTextLayer;
    static constexpr auto fields =
        std::tuple{required("slot", &Text::slot),
                   lenient("visible", &Text::visible),
                   required("frame", &Text::frame),
                   lenient("alignment", &Text::alignment),
                   lenient("foreground", &Text::foreground),
                   lenient("fontName", &Text::fontName),
                   lenient("fontScale", &Text::fontScale),
                   lenient("hasBox", &Text::hasBox),
                   lenient("background", &Text::background),
                   lenient("backgroundOpacity", &Text::backgroundOpacity),
                   lenient("cornerRadius", &Text::cornerRadius),
                   lenient("shadowOpacity", &Text::shadowOpacity),
                   lenient("shadowRadius", &Text::shadowRadius),
                   lenient("shadowDistance", &Text::shadowDistance),
                   lenient("shadowAngle", &Text::shadowAngle),
                   lenient("shadowColor", &Text::shadowColor)};
};

template <>
struct JsonFields<JSONShapeLayer> {
    using Shape = JSONShapeLayer;
    static constexpr auto fields = std::tuple{required("kind", &Shape::kind, ShapeKind::rectangle),
                                              required("frame", &Shape::frame),
                                              lenient("fill", &Shape::fill),
                                              lenient("fillOpacity", &Shape::fillOpacity),
                                              lenient("stroke", &Shape::stroke),
                                              lenient("strokeOpacity", &Shape::strokeOpacity),
                                              lenient("strokeWidth", &Shape::strokeWidth),
                                              lenient("cornerRadius", &Shape::cornerRadius)};
};

template <>
struct JsonFields<JSONVisualTemplateDefinition> {
    using Definition = JSONVisualTemplateDefinition;
    static constexpr auto fields =
        std::tuple{lenient("id", &Definition::id),
                   lenient("order", &Definition::order),
                   lenient("name", &Definition::name),
                   lenient("format", &Definition::format),
                   lenient("textLayers", &Definition::textLayers),
                   lenient("shapeLayers", &Definition::shapeLayers),
                   lenient("previewPNGBase64", &Definition::previewPNGBase64),
                   lenient("previewWebPBase64", &Definition::previewWebPBase64)};
};

}    // namespace json

JSONTextLayer::JSONTextLayer(const TextLayerTemplate& text)
    : slot(rawValue(text.slot)), visible(text.isVisible), frame(text.frame),
      alignment(text.alignment), foreground(text.design.foreground.hexRGB()),
      fontName(text.design.fontName), fontScale(text.design.fontScale), hasBox(text.design.hasBox),
      background(text.design.background.hexRGB()), backgroundOpacity(text.design.backgroundOpacity),
      cornerRadius(text.design.cornerRadius), shadowOpacity(text.design.shadowOpacity),
      shadowRadius(text.design.shadowRadius), shadowDistance(text.design.shadowDistance),
      shadowAngle(text.design.shadowAngle), shadowColor(text.design.shadowColor.hexRGB())
{
}

std::optional<TextLayer> JSONTextLayer::textLayer(const PublicationItem& item) const
{
    const auto known = storedValue(slot);    // accepts the displayed name of the tagline, too
    if (!known)
        return std::nullopt;
    const auto existing = std::ranges::find(item.layers, *known, &TextLayer::slot);
    TextLayer layer = existing != item.layers.end()
                          ? *existing
                          : TextLayer(QUuid::createUuid(), *known, item.analysis.text(*known),
                                      visible.value_or(true), frame);
    layer.frame = frame;
    take(layer.isVisible, visible);
    take(layer.alignment, alignment);
    takeColor(layer.foreground, foreground);
    take(layer.fontName, fontName);
    take(layer.fontScale, fontScale);
    take(layer.hasBox, hasBox);
    takeColor(layer.background, background);
    take(layer.backgroundOpacity, backgroundOpacity);
    take(layer.cornerRadius, cornerRadius);
    take(layer.shadowOpacity, shadowOpacity);
    take(layer.shadowRadius, shadowRadius);
    take(layer.shadowDistance, shadowDistance);
    take(layer.shadowAngle, shadowAngle);
    takeColor(layer.shadowColor, shadowColor);
    return layer;
}

JSONShapeLayer::JSONShapeLayer(const ShapeLayerSnapshot& shape)
    : kind(shape.kind), frame(shape.frame), fill(shape.fill.hexRGB()),
      fillOpacity(shape.fillOpacity), stroke(shape.stroke.hexRGB()),
      strokeOpacity(shape.strokeOpacity), strokeWidth(shape.strokeWidth),
      cornerRadius(shape.cornerRadius)
{
}

ShapeLayer JSONShapeLayer::shapeLayer(QUuid id) const
{
    ShapeLayer shape(id, kind, frame);
    takeColor(shape.fill, fill);
    shape.fillOpacity = fillOpacity;
    takeColor(shape.stroke, stroke);
    take(shape.strokeOpacity, strokeOpacity);
    take(shape.strokeWidth, strokeWidth);
    take(shape.cornerRadius, cornerRadius);
    return shape;
}

SocialFormat JSONVisualTemplateDefinition::socialFormat() const
{
    return fromTemplateKey(format.value_or(QString())).value_or(allCases<SocialFormat>().front());
}

std::optional<QByteArray> JSONVisualTemplateDefinition::previewImage() const
{
    for (const auto& stored : {previewWebPBase64, previewPNGBase64}) {
        if (stored && !stored->isEmpty())
            return stored;
    }
    return std::nullopt;
}

VisualTemplate JSONVisualTemplateDefinition::visualTemplate(const PublicationItem& item,
                                                            SocialFormat made) const
{
    VisualTemplate result;
    result.id = id;
    result.name = name;
    result.order = order;
    for (const JSONTextLayer& text : textLayers) {
        if (const auto layer = text.textLayer(item))
            result.textLayers.append(TextLayerTemplate(*layer));
    }
    result.shapeLayers = shapes();
    result.previewPNG = previewImage();
    result.aspectRatio = row(made).aspectRatio;
    if (sourceURL.isValid())
        result.sourceFile = sourceURL;
    return result;
}

QList<ShapeLayerSnapshot> JSONVisualTemplateDefinition::shapes() const
{
    QList<ShapeLayerSnapshot> made;
    for (const JSONShapeLayer& shape : shapeLayers)
        made.append(shape.shapeLayer(QUuid::createUuidV5(id, QString::number(made.size()))));
    return made;
}

TemplateApplication JSONVisualTemplateDefinition::application() const
{
    // The shapes are made only once, because they are the same for all items.
    return [texts = textLayers, all = shapes()](PublicationItem& item) {
        for (const JSONTextLayer& text : texts) {
            const auto layer = text.textLayer(item);
            if (TextLayer* own = layer ? item.layer(layer->slot) : nullptr)
                *own = *layer;
        }
        item.shapeLayers = all;
    };
}

DefinitionFile readDefinition(QByteArrayView bytes)
{
    if (bytes.size() > largestFile)
        return {std::nullopt, u"es demasiado grande"_s};
    const json::Value value = json::parsedWithCare(bytes);
    const auto isList = [&](const char* key) {
        return value.is_object() && value.contains(key) && value[key].is_array();
    };
    if (!isList("textLayers") && !isList("shapeLayers"))
        return {std::nullopt, u"no es una plantilla de Moltiva"_s};
    for (const char* key : {"textLayers", "shapeLayers"}) {
        if (isList(key) && qsizetype(value[key].size()) > mostLayers)
            return {std::nullopt, u"tiene demasiadas capas"_s};
    }
    JSONVisualTemplateDefinition definition;
    json::read(value, definition);
    dropLongTexts(definition);
    if (definition.id.isNull())
        definition.id = QUuid::createUuidV5(QUuid(), bytes.toByteArray());
    definition.name = templateName(definition.name);
    if (definition.name.isEmpty())
        definition.name = u"Sin nombre"_s;
    return {definition, {}};
}

DefinitionFile readDefinitionFile(const QString& path)
{
    QFile file(path);
    // Opening a named pipe could block without end.
    if (QFileInfo::exists(path) && !QFileInfo(path).isFile())
        return {std::nullopt, u"no es un archivo"_s};
    if (!file.open(QIODevice::ReadOnly))
        return {std::nullopt, u"no se puede abrir"_s};
    DefinitionFile read = readDefinition(file.read(largestFile + 1));
    if (read.definition)
        read.definition->sourceURL = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
    return read;
}

QByteArray definitionBytes(const JSONVisualTemplateDefinition& definition)
{
    // Indented, for designers who read the file.
    constexpr int indent = 2;
    const QByteArray compact = json::written(definition);
    return QByteArray::fromStdString(
               json::Value::parse(compact.begin(), compact.end())
                   .dump(indent, ' ', false, json::Value::error_handler_t::replace)) +
           '\n';
}
