#pragma once

#include "canvas/interaction/CanvasInteraction.h"

#include <QColor>
#include <QPainter>
#include <QRect>

// Draws what is shown on screen over the picture but never exported: frames, resize handle, guides,
// safe zone. Lengths are in logical pixels and rounded to whole screen pixels, so that lines are
// crisp at any pixel ratio.
class CanvasOverlay {
public:
    // `canvas`: the rectangle of the picture in the painter's logical pixels; `pixels`: its size in
    // screen pixels.
    CanvasOverlay(QPainter& painter, const QRect& canvas, QSize pixels);
    ~CanvasOverlay() { m_painter.restore(); }
    Q_DISABLE_COPY_MOVE(CanvasOverlay)

    // The rectangle of the picture, in screen pixels.
    QRect picture() const { return m_canvas; }

    // Rectangles are in logical pixels from the top left corner of the canvas.
    void drawSelection(const QRectF& layer, const QString& name, const QColor& line,
                       const QColor& tag);
    void drawHover(const QRectF& layer, const QColor& line);
    void drawResizeHandle(const QRectF& handle);
    void drawSnapGuides(SnapGuides guides, const QColor& line);
    void drawFocusRing(const QColor& line);
    // Draws two bands. `top`, `bottom`: their heights, in fractions of the canvas' height.
    void drawSafeZone(double top, double bottom);

    // A rectangle in logical pixels; drawSelection() and drawResizeHandle() change nothing outside
    // of it.
    static QRectF selectionExtent(const QRectF& layer, const QSizeF& canvas);

private:
    QRect toScreen(const QRectF& rect) const;
    int screenPixels(double logical) const;    // at least one
    void fillRing(const QRect& rect, int inside, int outside, const QColor& color);
    void fillDashes(const QRect& line, double dash, double gap, const QColor& color);
    void drawTag(const QRect& frame, const QString& name, const QColor& color);
    void drawLabel(const QRect& box, const QString& text, Qt::Alignment alignment);

    QPainter& m_painter;
    double m_ratio;
    QRect m_canvas;    // screen pixels
};
