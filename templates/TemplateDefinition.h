#pragma once

#include "templates/VisualTemplate.h"

// Template definition files, as they are written. What a file leaves out stays as it is in the item
// that the template is applied to.

// Colours are "#RRGGBB"; one that is not reads as left out.
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

    // The item's layer of the slot, or a new one with the item's copy, as this describes it.
    // Nothing for a slot that is not known.
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
    int order = 0;    // among those of its format
    QString name;
    std::optional<QString> format;                                    // a template key
    std::optional<QByteArray> previewPNGBase64, previewWebPBase64;    // decoded
    QList<JSONTextLayer> textLayers;
    QList<JSONShapeLayer> shapeLayers;    // bottom first
    QUrl sourceURL;                       // the file it was read from; not written

    // The format of its key; the first one for a missing or unknown key.
    SocialFormat socialFormat() const;
    bool matches(SocialFormat asked) const { return socialFormat() == asked; }

    // The stored preview, the WebP one rather than the PNG one.
    std::optional<QByteArray> previewImage() const;

    VisualTemplate visualTemplate(const PublicationItem& item, SocialFormat made) const;

    // The same ids for every item and every time.
    QList<ShapeLayerSnapshot> shapes() const;

    // visualTemplate() for each item in turn.
    TemplateApplication application() const;
};

// Either a definition or the reason, the end of a Spanish sentence.
struct DefinitionFile {
    std::optional<JSONVisualTemplateDefinition> definition;
    QString error;
};

// A missing name or id is made up; what cannot be read of the layers is passed over. Any bytes.
DefinitionFile readDefinition(QByteArrayView bytes);
DefinitionFile readDefinitionFile(const QString& path);

QByteArray definitionBytes(const JSONVisualTemplateDefinition& definition);
