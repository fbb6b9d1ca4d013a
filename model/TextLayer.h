#pragma once

#include "model/CodableColor.h"
#include "model/CodableRect.h"
#include "model/CopySlot.h"
#include "model/LayerTextAlignment.h"

#include <QString>
#include <QUuid>

struct TextLayer;

// The longest text that can be edited, in UTF-16 code units.
inline constexpr int longestText = 10'000;

// The style of a text layer, without its frame and text. Sizes are in design units; see
// designSize().
struct TextLayerDesign {
    CodableColor foreground = codableWhite;
    QString fontName = QStringLiteral("System");    // "System", a full font name, or a font family
    double fontScale = 1.0;
    bool hasBox = true;
    CodableColor background = codableBlack;
    double backgroundOpacity = 0.18;
    double cornerRadius = 16.0;
    double shadowOpacity = 0.24;
    double shadowRadius = 14.0;
    double shadowDistance = 8.0;
    double shadowAngle = 90.0;    // degrees, counterclockwise: 0 moves the shadow right, 90 up
    CodableColor shadowColor = codableBlack;

    TextLayerDesign() = default;
    // The default style for a slot: the box of a call to action is less transparent and rounder.
    explicit TextLayerDesign(CopySlot slot)
    {
        if (slot == CopySlot::callToAction) {
            backgroundOpacity = 0.36;
            cornerRadius = 24.0;
        }
    }

    // Replaces the style of `layer`; its other members do not change.
    void apply(TextLayer& layer) const;

    bool operator==(const TextLayerDesign&) const = default;
};

// One text block on the canvas. Assigning it to a TextLayerDesign copies only the style.
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

    // A copy of `layer` with the given id.
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
