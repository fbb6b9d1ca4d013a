#pragma once

#include "model/CodableColor.h"
#include "model/CodableRect.h"
#include "model/Vocabulary.h"

#include <QUuid>

enum class ShapeKind { rectangle, circle, triangle, line };

struct ShapeKindRow {
    ShapeKind value;
    QStringView rawValue;
    QStringView icon;
};

template <>
struct Vocabulary<ShapeKind> {
    using enum ShapeKind;
    static constexpr std::array rows{
        ShapeKindRow{rectangle, u"Rectángulo", u"shape-rectangle"},
        ShapeKindRow{circle, u"Círculo", u"shape-circle"},
        ShapeKindRow{triangle, u"Triángulo", u"shape-triangle"},
        ShapeKindRow{line, u"Línea", u"shape-line"},
    };
};
static_assert(rowsAreInOrder<ShapeKind>());

struct ShapeLayer;

// The style of a shape, without its frame. Sizes are in design units; see designSize().
struct ShapeLayerDesign {
    ShapeKind kind = ShapeKind::rectangle;
    CodableColor fill = codableBlack;
    double fillOpacity = 1.0;
    CodableColor stroke = codableWhite;
    double strokeOpacity = 0.35;
    double strokeWidth = 0;
    double cornerRadius = 0;

    ShapeLayerDesign() = default;
    explicit ShapeLayerDesign(ShapeKind shapeKind)
        : kind(shapeKind), strokeWidth(shapeKind == ShapeKind::line ? 4.0 : 0.0),
          cornerRadius(shapeKind == ShapeKind::rectangle ? 18.0 : 0.0)
    {
    }

    // Replaces the style of `shape`, but not its id and frame.
    void apply(ShapeLayer& shape) const;

    bool operator==(const ShapeLayerDesign&) const = default;
};

// A vector shape on the canvas. Assigning it to a ShapeLayerDesign copies only the style.
struct ShapeLayer : ShapeLayerDesign {
    QUuid id;
    CodableRect frame;

    ShapeLayer() = default;
    ShapeLayer(QUuid shapeId, ShapeKind shapeKind, CodableRect shapeFrame)
        : ShapeLayerDesign(shapeKind), id(shapeId), frame(shapeFrame)
    {
    }

    // A copy of `shape` with the given id.
    static ShapeLayer preservingID(QUuid id, ShapeLayer shape)
    {
        shape.id = id;
        return shape;
    }

    bool operator==(const ShapeLayer&) const = default;
};

inline void ShapeLayerDesign::apply(ShapeLayer& shape) const
{
    static_cast<ShapeLayerDesign&>(shape) = *this;
}
