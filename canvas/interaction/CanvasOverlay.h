#pragma once

#include "canvas/interaction/CanvasInteraction.h"

#include <QColor>
#include <QPainter>
#include <QRect>

// What lies over the picture on screen and is never exported: frames, handle, guides, safe zone.
// Sizes are logical pixels, drawn on whole pixels of the screen so that lines stay crisp at any
// ratio.
class CanvasOverlay {
public:
    // `canvas`: the rectangle of the picture in the painter's logical pixels, which holds `pixels`
    // of the screen.
    CanvasOverlay(QPainter& painter, const QRect& canvas, QSize pixels);
    ~CanvasOverlay() { m_painter.restore(); }
    Q_DISABLE_COPY_MOVE(CanvasOverlay)

    // Where the picture goes, in pixels of the screen.
    QRect picture() const { return m_canvas; }

    // Rectangles in logical pixels from the canvas' corner.
    void drawSelection(const QRectF& layer, const QString& name, const QColor& line,
                       const QColor& tag);
    void drawHover(const QRectF& layer, const QColor& line);
    void drawResizeHandle(const QRectF& handle);
    void drawSnapGuides(SnapGuides guides, const QColor& line);
    void drawFocusRing(const QColor& line);
    // Bands in fractions of the height.
    void drawSafeZone(double top, double bottom);

    // What a selection with this frame may paint at most, in logical pixels.
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
    QRect m_canvas;    // pixels of the screen
};
