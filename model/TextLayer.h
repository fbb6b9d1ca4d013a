#pragma once

#include "model/CodableColor.h"
#include "model/CodableRect.h"
#include "model/CopySlot.h"
#include "model/LayerTextAlignment.h"

#include <QString>
#include <QUuid>

struct TextLayer;

// The longest text that can be edited, in UTF-16 units.
inline constexpr int longestText = 10'000;

// The style of a text layer, without its place and text. Sizes are in design units; see
// designSize().
struct TextLayerDesign {
    CodableColor foreground = codableWhite;
    QString fontName = QStringLiteral("System");    // "System", a full font name, or a family
    double fontScale = 1.0;
    bool hasBox = true;
    CodableColor background = codableBlack;
    double backgroundOpacity = 0.18;
    double cornerRadius = 16.0;
    double shadowOpacity = 0.24;
    double shadowRadius = 14.0;
    double shadowDistance = 8.0;
    double shadowAngle = 90.0;    // degrees, y upwards: 90 lifts the shadow
    CodableColor shadowColor = codableBlack;

    TextLayerDesign() = default;
    // The default style of a slot: the box of a call to action is denser and rounder.
    explicit TextLayerDesign(CopySlot slot)
    {
        if (slot == CopySlot::callToAction) {
            backgroundOpacity = 0.36;
            cornerRadius = 24.0;
        }
    }

    // Writes the whole style into a layer; its place, text and visibility stay.
    void apply(TextLayer& layer) const;

    bool operator==(const TextLayerDesign&) const = default;
};

// One text block on the canvas. Assigned to a TextLayerDesign, it gives its style.
struct TextLayer : TextLayerDesign {
    QUuid id;
    CopySlot slot = CopySlot::title;
    QString text;
    bool isVisible = true;
    CodableRect frame;
    LayerTextAlignment alignment = LayerTextAlignment::center;

    TextLayer() = default;
    TextLayer(QUuid layerId, CopySlot layerSlot, QString layerText, bool visible,
              CodableRect layerFrame)
        : TextLayerDesign(layerSlot), id(layerId), slot(layerSlot), text(std::move(layerText)),
          isVisible(visible), frame(layerFrame)
    {
    }

    // A copy of `layer` with another id.
    static TextLayer preservingID(QUuid id, TextLayer layer)
    {
        layer.id = id;
        return layer;
    }

    bool operator==(const TextLayer&) const = default;
};

inline void TextLayerDesign::apply(TextLayer& layer) const
{
    static_cast<TextLayerDesign&>(layer) = *this;
}
