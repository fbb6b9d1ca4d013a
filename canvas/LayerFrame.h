#pragma once
#include "model/CodableRect.h"
#include "model/ShapeLayer.h"

enum class LayerAlignment { left, horizontalCentre, right, top, verticalCentre, bottom };

// The smallest width and height that the user can give a layer, in fractions of the canvas.
struct SmallestFrame {
    double width = 0.16, height = 0.06;
    bool operator==(const SmallestFrame&) const = default;
};
constexpr SmallestFrame smallestFrameOf(ShapeKind kind)
{
    return kind == ShapeKind::line ? SmallestFrame{0.08, 0.01} : SmallestFrame{};
}

// Where the user can put a layer, by pointer, by key or by number. All values are fractions of the
// canvas size.
namespace LayerFrame {

// The part of every layer that must stay inside the canvas.
inline constexpr double minimumVisibleFraction = 0.08;

double minimumVisibleOrigin(double size);
double maximumVisibleOrigin(double size);
double maximumOverflowSize(double origin);

CodableRect moved(CodableRect frame, double dx, double dy);
CodableRect resized(CodableRect frame, double dx, double dy, SmallestFrame smallest);
// `frame` at an edge or in the middle of the canvas; the other axis stays as it is.
CodableRect aligned(CodableRect frame, LayerAlignment alignment);

}    // namespace LayerFrame
