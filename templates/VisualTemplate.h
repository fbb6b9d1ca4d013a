#pragma once

#include "model/PublicationItem.h"
#include "model/SocialFormat.h"

#include <QByteArray>
#include <QUrl>

#include <functional>
#include <optional>

// A shape as a template stores it. Applying the template gives every item shapes with these ids.
using ShapeLayerSnapshot = ShapeLayer;

// The place and style of the text layer of a slot.
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

    // Overwrites the layer's visibility, place and style, but not its id, slot and text.
    void apply(TextLayer& layer) const;

    bool operator==(const TextLayerTemplate&) const = default;
};

// An arrangement of texts and shapes to use again.
struct VisualTemplate {
    QUuid id;
    QString name;
    QList<TextLayerTemplate> textLayers;
    QList<ShapeLayerSnapshot> shapeLayers;    // the bottom shape first
    std::optional<QByteArray> previewPNG;     // the bytes of an image file, not always PNG
    std::optional<double> aspectRatio;        // width / height of the format it was made for
    std::optional<int> order;
    std::optional<QUrl> sourceFile;    // the definition file it comes from

    // The arrangement of an item as a template with a new id.
    static VisualTemplate of(const PublicationItem& item, const QString& name, SocialFormat format);

    // Gives the item's text layers the places and styles of the template, but keeps their words.
    // Replaces all shapes. Skips slots that are missing in the template or in the item.
    void apply(PublicationItem& item) const;
    // A template without an aspect ratio suits every format.
    bool suits(SocialFormat format) const;

    bool operator==(const VisualTemplate&) const = default;
};

// A text style that the user has saved under a name.
struct DesignTemplate {
    QUuid id;
    QString name;
    TextLayerDesign style;

    bool operator==(const DesignTemplate&) const = default;
};

// Applies a design to an item; may be called for any number of items.
using TemplateApplication = std::function<void(PublicationItem&)>;

// Whether applying the design would change nothing in the item but the ids of shapes.
bool isApplied(const TemplateApplication& design, const PublicationItem& item);
