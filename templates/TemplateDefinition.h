#pragma once

#include "templates/VisualTemplate.h"

// Template definition files as they are written. A member without a value leaves that of the item
// unchanged when the template is applied.

// Colours are "#RRGGBB"; any other text counts as no value.
struct JSONTextLayer {
    QString slot;
    std::optional<bool> visible;
    CodableRect frame;
    std::optional<LayerTextAlignment> alignment;
    std::optional<QString> foreground;
    std::optional<QString> fontName;
    std::optional<double> fontScale;
    std::optional<bool> hasBox;
    std::optional<QString> background;
    std::optional<double> backgroundOpacity;
    std::optional<double> cornerRadius;
    std::optional<double> shadowOpacity;
    std::optional<double> shadowRadius;
    std::optional<double> shadowDistance;
    std::optional<double> shadowAngle;
    std::optional<QString> shadowColor;

    explicit JSONTextLayer(const TextLayerTemplate& text);
    JSONTextLayer() = default;

    // The item's layer of this slot, or a new one with the item's copy, changed to this
    // description. Nothing for an unknown slot.
    std::optional<TextLayer> textLayer(const PublicationItem& item) const;
};

struct JSONShapeLayer {
    ShapeKind kind = ShapeKind::rectangle;
    CodableRect frame;
    QString fill = QStringLiteral("#000000");
    double fillOpacity = 1.0;
    std::optional<QString> stroke;
    std::optional<double> strokeOpacity;
    std::optional<double> strokeWidth;
    std::optional<double> cornerRadius;

    explicit JSONShapeLayer(const ShapeLayerSnapshot& shape);
    JSONShapeLayer() = default;

    ShapeLayer shapeLayer(QUuid id) const;
};

struct JSONVisualTemplateDefinition {
    QUuid id;
    int order = 0;    // position among the definitions of its format
    QString name;
    std::optional<QString> format;    // SocialFormatRow::templateKey
    std::optional<QByteArray> previewPNGBase64, previewWebPBase64;    // the bytes, decoded
    QList<JSONTextLayer> textLayers;
    QList<JSONShapeLayer> shapeLayers;    // bottom first
    QUrl sourceURL;                       // the file that was read; never written

    // The format of the key; the first of all formats if the key is missing or unknown.
    SocialFormat socialFormat() const;
    bool matches(SocialFormat asked) const { return socialFormat() == asked; }

    // The stored preview: WebP if there is one, else PNG.
    std::optional<QByteArray> previewImage() const;

    VisualTemplate visualTemplate(const PublicationItem& item, SocialFormat made) const;

    // The shapes with ids that depend only on the definition: equal for every item and every call.
    QList<ShapeLayerSnapshot> shapes() const;

    // Applies the texts of visualTemplate() and the shapes to each item it is called with.
    TemplateApplication application() const;
};

// Either a definition, or the reason why there is none, as the end of a Spanish sentence.
struct DefinitionFile {
    std::optional<JSONVisualTemplateDefinition> definition;
    QString error;
};

// Reads any bytes. A missing name or id is made up; layers that cannot be read are left out.
DefinitionFile readDefinition(QByteArrayView bytes);
DefinitionFile readDefinitionFile(const QString& path);

QByteArray definitionBytes(const JSONVisualTemplateDefinition& definition);
