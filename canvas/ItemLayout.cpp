#include "canvas/ItemLayout.h"

#include "canvas/BoxShadow.h"
#include "canvas/ImagePlacementGeometry.h"
#include "canvas/TextFitting.h"

#include <cmath>
#include <numbers>

namespace {

// Design units between a text and the edge of its box, whether the box is drawn or not.
constexpr double textInset = 10;
// Shadows whose opacity or radius is not above leastShadow cannot be seen, nor can strokes whose
// width is not above leastStroke. Radius and width are in design units.
constexpr double leastShadow = 0.001, leastStroke = 0.1;
// Limit of coordinates and lengths, in pixels. A frame read from a file may hold any number, but
// nothing beyond this limit can be seen on the canvas.
constexpr double farAway = 100000;

double bounded(double value)
{
    return value > -farAway ? std::min(value, farAway) : -farAway;
}

QRectF toPixels(const CodableRect& frame, QSizeF canvas)
{
    return {bounded(frame.x * canvas.width()), bounded(frame.y * canvas.height()),
            bounded(frame.width * canvas.width()), bounded(frame.height * canvas.height())};
}

// Limits the radius to half the shorter side. Qt would limit it for each axis separately, and the
// corners would become elliptical.
double radiusWithin(double cornerRadius, const QRectF& box)
{
    const double roundest = std::min(std::abs(box.width()), std::abs(box.height())) / 2;
    return ExportCanvasRenderer::clamp(bounded(cornerRadius), 0, roundest);
}

QPainterPath outlineOf(const ShapeLayer& shape, const QRectF& rect, double scale)
{
    QPainterPath path;
    switch (shape.kind) {
    case ShapeKind::rectangle: {
        const double radius = radiusWithin(shape.cornerRadius * scale, rect);
        path.addRoundedRect(rect, radius, radius);
        break;
    }
    case ShapeKind::circle:
        path.addEllipse(rect);
        break;
    case ShapeKind::triangle:
        path.moveTo(rect.center().x(), rect.top());
        path.lineTo(rect.bottomRight());
        path.lineTo(rect.bottomLeft());
        path.closeSubpath();
        break;
    case ShapeKind::line:
        path.moveTo(rect.left(), rect.center().y());
        path.lineTo(rect.right(), rect.center().y());
        break;
    }
    return path;
}

// How far the point of the stroke reaches beyond the triangle's sharpest corner, in stroke widths.
// Measured along a side of the triangle, as Qt measures the miter limit.
double sharpestPoint(const QRectF& triangle)
{
    const double halfBase = std::abs(triangle.width()) / 2, height = std::abs(triangle.height());
    const double apex = 2 * std::atan2(halfBase, height), base = std::atan2(height, halfBase);
    return 0.5 / std::tan(std::min(apex, base) / 2);
}

LaidOutShape layOutShape(const ShapeLayer& shape, QSizeF canvas, double scale)
{
    LaidOutShape result;
    result.source = shape;
    const QRectF rect = toPixels(shape.frame, canvas);
    result.outline = outlineOf(shape, rect, scale);
    result.fill = shape.fill.withAlpha(shape.fillOpacity);
    result.stroke = shape.stroke.withAlpha(shape.strokeOpacity);
    if (shape.strokeWidth > leastStroke)
        result.strokeWidth = bounded(shape.strokeWidth * scale);
    if (shape.kind == ShapeKind::triangle && sharpestPoint(rect) > plainMiterLimit)
        result.miterLimit = sharpMiterLimit;
    return result;
}

std::optional<LaidOutShadow> layOutShadow(const TextLayer& layer, double scale)
{
    if (!layer.hasBox || !(layer.shadowOpacity > leastShadow) ||
        !(layer.shadowRadius > leastShadow))
        return std::nullopt;
    const double angle = layer.shadowAngle * std::numbers::pi / 180;
    const double distance = bounded(layer.shadowDistance * scale);
    LaidOutShadow shadow;
    // Changes the sign of y: it points up for shadowAngle, and down on the canvas.
    shadow.offset =
        QPointF(bounded(std::cos(angle) * distance), bounded(-std::sin(angle) * distance));
    shadow.sigma = std::min(bounded(layer.shadowRadius * scale), 2000.0) / 2;
    // A translucent box has a fainter shadow.
    const double opacity = ExportCanvasRenderer::clamp(layer.shadowOpacity, 0, 1) *
                           ExportCanvasRenderer::clamp(layer.backgroundOpacity, 0, 1);
    shadow.color = layer.shadowColor.withAlpha(opacity);
    return shadow;
}

// Whether both layers get the same font size and line breaks at the same scale. The positions of
// their boxes and their colours make no difference.
bool breakAlike(const TextLayer& one, const TextLayer& other)
{
    return one.text == other.text && one.slot == other.slot && one.fontName == other.fontName &&
           one.fontScale == other.fontScale && one.alignment == other.alignment &&
           one.frame.width == other.frame.width && one.frame.height == other.frame.height;
}

QRectF textArea(const QRectF& box, double scale)
{
    const double inset = textInset * scale;
    return box.adjusted(inset, inset, -inset, -inset);
}

// `known`: laid-out texts to reuse, from a layout with the same canvas size and scale.
LaidOutTextLayer layOutTextLayer(const TextLayer& layer, QSizeF canvas, double scale,
                                 const QList<LaidOutTextLayer>& known)
{
    const QRectF box = toPixels(layer.frame, canvas);
    const QRectF area = textArea(box, scale);
    const auto same = std::ranges::find_if(
        known, [&](const LaidOutTextLayer& other) { return breakAlike(other.source, layer); });
    const LaidOutText text = same != known.end()
                                 ? same->text
                                 : ExportCanvasRenderer::fittedText(layer, area.size(), scale);
    // `overflows` can be true only at the smallest font size: fittedText() chooses a larger one
    // only if the text fits.
    const bool overflows =
        !ExportCanvasRenderer::fits(TextLayoutMetrics::measuredSize(text), area.size());

    LaidOutTextLayer result{.source = layer,
                            .box = box,
                            .cornerRadius = radiusWithin(layer.cornerRadius * scale, box),
                            .fill = std::nullopt,
                            .shadow = layOutShadow(layer, scale),
                            .text = text,
                            .overflows = overflows,
                            .textPosition = {},
                            .foreground = layer.foreground.color()};
    if (layer.hasBox)
        result.fill = layer.background.withAlpha(layer.backgroundOpacity);
    result.textPosition =
        TextLayoutMetrics::verticallyCenteredRect(text.measuredRect(), area).topLeft();
    return result;
}

}    // namespace

ItemLayout layOut(const PublicationItem& item, QSizeF outputSize, QSizeF reference,
                  const ItemLayout& known)
{
    ItemLayout layout;
    layout.canvas =
        QSize(int(std::lround(ExportCanvasRenderer::clamp(outputSize.width(), 0, 30000))),
              int(std::lround(ExportCanvasRenderer::clamp(outputSize.height(), 0, 30000))));
    layout.photoRect =
        ImagePlacementGeometry::imageRect(item.image.size, outputSize, item.placement);
    const double scale = layout.scale = ExportCanvasRenderer::designScale(outputSize, reference);
    const bool comparable = known.canvas == layout.canvas && known.scale == scale;
    for (const ShapeLayer& shape : item.shapeLayers)
        layout.shapes.append(layOutShape(shape, outputSize, scale));
    for (const TextLayer& layer : item.layers) {
        if (layer.isVisible)
            layout.texts.append(layOutTextLayer(
                layer, outputSize, scale, comparable ? known.texts : QList<LaidOutTextLayer>()));
    }
    return layout;
}

std::optional<double> fontScaleInBox(const TextLayer& layer, QSizeF outputSize, QSizeF reference)
{
    const double scale = ExportCanvasRenderer::designScale(outputSize, reference);
    const QSizeF area = textArea(toPixels(layer.frame, outputSize), scale).size();
    const double wanted = ExportCanvasRenderer::wantedFontSize(layer, area, scale);
    const double fitted = ExportCanvasRenderer::fittedFontSize(layer, area, scale);
    if (!(fitted < wanted))
        return std::nullopt;
    return fitted / ExportCanvasRenderer::baseFontSize(layer.slot, area);
}

QRectF extentOf(const LaidOutShape& shape)
{
    // miterLimit is measured from the side of the stroke, which lies half a stroke width off the
    // outline.
    const double reach = (shape.miterLimit + 0.5) * shape.strokeWidth;
    return shape.outline.controlPointRect().adjusted(-reach, -reach, reach, reach);
}

QRectF extentOf(const LaidOutTextLayer& layer)
{
    QRectF extent = layer.box.normalized();
    if (layer.shadow) {
        const double blur = layer.shadow->sigma * blurReach;
        extent = extent.united(layer.box.normalized()
                                   .translated(layer.shadow->offset)
                                   .adjusted(-blur, -blur, blur, blur));
    }
    // Slanted and ornate letters may reach outside usedRect().
    const double overhang = layer.text.fontSize();
    return extent.united(layer.text.usedRect()
                             .translated(layer.textPosition)
                             .adjusted(-overhang, -overhang, overhang, overhang));
}
