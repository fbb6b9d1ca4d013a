#pragma once

#include "canvas/interaction/CanvasInteraction.h"

#include <QColor>
#include <QPainter>
#include <QRect>

// Draws what is on screen over the picture and never exported: frames, handle, guides, safe zone.
// Sizes are logical pixels, rounded to whole screen pixels so that lines stay crisp at any ratio.
class CanvasOverlay {
public:
    // `canvas`: the rectangle of the picture in the painter's logical pixels; `pixels`: its size in
    // screen pixels.
    CanvasOverlay(QPainter& painter, const QRect& canvas, QSize pixels);
    ~CanvasOverlay() { m_painter.restore(); }
    Q_DISABLE_COPY_MOVE(CanvasOverlay)

    // The rectangle of the picture, in screen pixels.
    QRect picture() const { return m_canvas; }

    // Rectangles are in logical pixels from the canvas' corner.
    void drawSelection(const QRectF& layer, const QString& name, const QColor& line,
                       const QColor& tag);
    void drawHover(const QRectF& layer, const QColor& line);
    void drawResizeHandle(const QRectF& handle);
    void drawSnapGuides(SnapGuides guides, const QColor& line);
    void drawFocusRing(const QColor& line);
    // `top`, `bottom`: heights of the bands, in fractions of the canvas' height.
    void drawSafeZone(double top, double bottom);

    // The logical pixels that drawSelection() and drawResizeHandle() may touch at most.
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
