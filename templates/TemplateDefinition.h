#pragma once

#include "templates/VisualTemplate.h"

// The contents of template definition files. Colours are strings "#RRGGBB"; any other text counts
// as no value.

// Place and style of a text layer. When the template is applied, a member without a value leaves
// that of the item's layer unchanged.
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

    // The item's layer of this slot, or a new one with the item's copy if it has none, with this
    // place and style. Nothing for an unknown slot.
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
    std::optional<QString> format;    // a SocialFormatRow::templateKey
    std::optional<QByteArray> previewPNGBase64, previewWebPBase64;    // decoded from base64
    QList<JSONTextLayer> textLayers;
    QList<JSONShapeLayer> shapeLayers;    // the bottom shape first
    QUrl sourceURL;                       // the file it was read from; not part of the JSON

    // The format that the key `format` names; the first SocialFormat if the key is missing or
    // unknown.
    SocialFormat socialFormat() const;
    bool matches(SocialFormat asked) const { return socialFormat() == asked; }

    // The stored preview: WebP if there is one, else PNG.
    std::optional<QByteArray> previewImage() const;

    VisualTemplate visualTemplate(const PublicationItem& item, SocialFormat made) const;

    // The shapes. Their ids depend only on the definition: they are the same for every item and in
    // every call.
    QList<ShapeLayerSnapshot> shapes() const;

    // Returns a function that gives an item's texts the places and styles of `textLayers`, and
    // replaces its shapes.
    TemplateApplication application() const;
};

// Either a definition, or the reason why there is none, as the end of a Spanish sentence.
struct DefinitionFile {
    std::optional<JSONVisualTemplateDefinition> definition;
    QString error;
};

// Accepts any bytes. A missing name or id is made up, the id from the bytes; layers that cannot be
// read are left out.
DefinitionFile readDefinition(QByteArrayView bytes);
DefinitionFile readDefinitionFile(const QString& path);

QByteArray definitionBytes(const JSONVisualTemplateDefinition& definition);
