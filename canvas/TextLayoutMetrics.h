#pragma once

#include "model/LayerTextAlignment.h"

#include <QFont>
#include <QGlyphRun>
#include <QList>
#include <QRectF>
#include <QString>
#include <QTextLayout>

#include <memory>

// A face at any fractional size. Text is always laid out at one large size without hinting and
// drawn through a scaling: QFont takes whole pixel sizes only, and its rounded metrics would break
// the same text differently at another size.
struct DesignFont {
    QFont face;         // of designPixelSize pixels
    double size = 0;    // pixels of the canvas

    static constexpr int designPixelSize = 256;
    double scale() const { return size / designPixelSize; }    // canvas pixels per design pixel
};

// Text with everything that decides its lines.
struct StyledText {
    QString text;
    DesignFont font;
    LayerTextAlignment alignment = LayerTextAlignment::leading;
};

// Lines of a text in a width: word wrapping, no padding, no limit on the lines. They are broken and
// measured flush left and aligned when drawn, so that alignment never changes a size. A text runs
// in its own direction, by its first letter that has one.
class LaidOutText {
public:
    LaidOutText(const StyledText& text, double width);

    // The used rectangle flush left, and where it is drawn; canvas pixels, origin at the top left
    // of the first line's box. Empty for an empty text or a width of 1 or less.
    QRectF measuredRect() const { return m_measured; }
    QRectF usedRect() const;    // on the thread that made the layout
    double fontSize() const { return m_scale * DesignFont::designPixelSize; }    // canvas pixels
    int lineCount() const { return m_layout ? m_layout->lineCount() : 0; }
    // Where the letters of each line stand, from their capitals' height down to the baseline;
    // canvas pixels from the top left of the box. Without emoji, which bring their own colours. On
    // the thread that made the layout.
    QList<QRectF> letterBands() const;
    // What is drawn, in pixels of the design size from the top left of the box. On the thread that
    // made the layout.
    QList<QGlyphRun> glyphRuns() const;
    // A character of it is in no installed font. On the thread that made the layout.
    bool lacksGlyphs() const;
    bool isBold() const;    // by the face that is drawn, whatever its name says
    // Paints with the painter's pen colour; `topLeft` is that of the box. On the thread that made
    // the layout.
    void draw(QPainter& painter, QPointF topLeft) const;
    // Of the text in one line, and of its widest part that cannot break; canvas pixels. Only for a
    // layout of unlimited width.
    double naturalWidth() const { return m_layout ? m_layout->maximumWidth() * m_scale : 0; }
    double narrowestWidth() const { return m_layout ? m_layout->minimumWidth() * m_scale : 0; }

private:
    std::shared_ptr<QTextLayout> m_layout;
    double m_scale = 1;
    QRectF m_measured;
};

namespace TextLayoutMetrics {

QRectF measuredRect(const StyledText& text, double width);
// Each side rounded up to a whole number.
QSizeF measuredSize(const StyledText& text, double width);
QSizeF measuredSize(const LaidOutText& text);
// Where to draw the lines so that they are vertically centred in the box; taller text starts at its
// top.
QRectF verticallyCenteredRect(const StyledText& text, const QRectF& box);
QRectF verticallyCenteredRect(const QRectF& measured, const QRectF& box);

}    // namespace TextLayoutMetrics
