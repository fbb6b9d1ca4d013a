#pragma once

#include "model/PublicationItem.h"
#include "model/SocialFormat.h"

#include <QByteArray>
#include <QUrl>

#include <functional>
#include <optional>

// A complete, storable copy of a shape; applied to items it gives them all the same identity.
using ShapeLayerSnapshot = ShapeLayer;

// Where the text of a slot sits and how it looks.
struct TextLayerTemplate {
    CopySlot slot = CopySlot::title;
    bool isVisible = true;
    CodableRect frame;
    LayerTextAlignment alignment = LayerTextAlignment::center;
    TextLayerDesign design;

    TextLayerTemplate() = default;
    explicit TextLayerTemplate(const TextLayer& layer)
        : slot(layer.slot), isVisible(layer.isVisible), frame(layer.frame),
          alignment(layer.alignment), design(layer)
    {
    }

    // The layer's identity, slot and text stay.
    void apply(TextLayer& layer) const;

    bool operator==(const TextLayerTemplate&) const = default;
};

// An arrangement of texts and shapes to use again.
struct VisualTemplate {
    QUuid id;
    QString name;
    QList<TextLayerTemplate> textLayers;
    QList<ShapeLayerSnapshot> shapeLayers;    // bottom first
    std::optional<QByteArray> previewPNG;     // an image file, of whatever kind
    std::optional<double> aspectRatio;        // width / height of the format it was made for
    std::optional<int> order;
    std::optional<QUrl> sourceFile;    // its definition

    // The arrangement of an item, under a new id.
    static VisualTemplate of(const PublicationItem& item, const QString& name, SocialFormat format);

    // Texts keep what they say, and those of a slot that is not mentioned stay as they are; slots
    // that the item lacks are passed over. The shapes replace all that the item had.
    void apply(PublicationItem& item) const;
    // One that was made for no format suits all.
    bool suits(SocialFormat format) const;

    bool operator==(const VisualTemplate&) const = default;
};

// A text style by name.
struct DesignTemplate {
    QUuid id;
    QString name;
    TextLayerDesign style;

    bool operator==(const DesignTemplate&) const = default;
};

// Lays a design over an item; the same one for all items of a click.
using TemplateApplication = std::function<void(PublicationItem&)>;

// Whether laying it over the item would change nothing that can be seen.
bool isApplied(const TemplateApplication& design, const PublicationItem& item);
