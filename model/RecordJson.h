#pragma once

// The JSON fields of the records that stored documents consist of. Only source files that read or
// write JSON include this header.

#include "model/GeneratedCopy.h"
#include "model/ImagePlacement.h"
#include "model/JsonMapping.h"
#include "model/ShapeLayer.h"
#include "model/TextLayer.h"

namespace json {

template <>
struct JsonFields<CodableColor> {
    static constexpr auto fields =
        std::tuple{required("red", &CodableColor::red), required("green", &CodableColor::green),
                   required("blue", &CodableColor::blue), required("alpha", &CodableColor::alpha)};
};

template <>
struct JsonFields<CodableRect> {
    static constexpr auto fields = std::tuple{
        required("x", &CodableRect::x), required("y", &CodableRect::y),
        required("width", &CodableRect::width), required("height", &CodableRect::height)};
};

template <>
struct JsonFields<ImagePlacement> {
    static constexpr auto fields =
        std::tuple{required("mode", &ImagePlacement::mode, ImageFitMode::fill),
                   required("zoom", &ImagePlacement::zoom),
                   required(
                       "offsetX", [](auto& placement) -> auto& { return placement.offset.x; }),
                   required(
                       "offsetY", [](auto& placement) -> auto& { return placement.offset.y; })};
};

template <>
struct JsonFields<GeneratedCopy> {
    static constexpr auto fields =
        std::tuple{required("title", &GeneratedCopy::title),
                   required("subtitle", &GeneratedCopy::subtitle),
                   required("tagline", &GeneratedCopy::tagline),
                   required("callToAction", &GeneratedCopy::callToAction),
                   required("publicationCaption", &GeneratedCopy::publicationCaption),
                   required("imageNotes", &GeneratedCopy::imageNotes)};
    static void repair(GeneratedCopy& copy)
    {
        copy.callToAction = GeneratedCopy::normalizedCallToAction(copy.callToAction);
    }
};

template <>
struct JsonFields<TextLayerDesign> {
    static constexpr auto fields =
        std::tuple{required("foreground", &TextLayerDesign::foreground),
                   required("fontName", &TextLayerDesign::fontName),
                   optional("fontScale", &TextLayerDesign::fontScale),
                   required("hasBox", &TextLayerDesign::hasBox),
                   required("background", &TextLayerDesign::background),
                   required("backgroundOpacity", &TextLayerDesign::backgroundOpacity),
                   required("cornerRadius", &TextLayerDesign::cornerRadius),
                   required("shadowOpacity", &TextLayerDesign::shadowOpacity),
                   required("shadowRadius", &TextLayerDesign::shadowRadius),
                   required("shadowDistance", &TextLayerDesign::shadowDistance),
                   required("shadowAngle", &TextLayerDesign::shadowAngle),
                   required("shadowColor", &TextLayerDesign::shadowColor)};
};

template <>
struct JsonFields<TextLayer> {
    static constexpr auto fields =
        std::tuple{required("id", &TextLayer::id),
                   required("slot", &TextLayer::slot),
                   required("text", &TextLayer::text),
                   required("isVisible", &TextLayer::isVisible),
                   required("frame", &TextLayer::frame),
                   required("alignment", &TextLayer::alignment, LayerTextAlignment::center)} +
        JsonFields<TextLayerDesign>::fields;
};

template <>
struct JsonFields<ShapeLayerDesign> {
    static constexpr auto fields =
        std::tuple{required("kind", &ShapeLayerDesign::kind, ShapeKind::rectangle),
                   required("fill", &ShapeLayerDesign::fill),
                   required("fillOpacity", &ShapeLayerDesign::fillOpacity),
                   required("stroke", &ShapeLayerDesign::stroke),
                   required("strokeOpacity", &ShapeLayerDesign::strokeOpacity),
                   required("strokeWidth", &ShapeLayerDesign::strokeWidth),
                   required("cornerRadius", &ShapeLayerDesign::cornerRadius)};
};

template <>
struct JsonFields<ShapeLayer> {
    static constexpr auto fields =
        std::tuple{required("id", &ShapeLayer::id), required("frame", &ShapeLayer::frame)} +
        JsonFields<ShapeLayerDesign>::fields;
};

}    // namespace json
