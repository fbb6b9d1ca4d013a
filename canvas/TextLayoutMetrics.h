#pragma once

#include "model/LayerTextAlignment.h"

#include <QFont>
#include <QGlyphRun>
#include <QList>
#include <QRectF>
#include <QString>
#include <QTextLayout>

#include <memory>

// A font face at any fractional size. Text is always laid out at designPixelSize without hinting
// and drawn scaled: QFont takes only whole pixel sizes, whose rounded metrics would break a text
// differently at different sizes.
struct DesignFont {
    QFont face;         // at a pixel size of designPixelSize
    double size = 0;    // canvas pixels

    static constexpr int designPixelSize = 256;
    double scale() const { return size / designPixelSize; }    // canvas pixels per design pixel
};

// A text with everything that decides its lines, but the width.
struct StyledText {
    QString text;
    DesignFont font;
    LayerTextAlignment alignment = LayerTextAlignment::leading;
};

// The lines of a text in a given width: word wrap, no padding, any number of lines. They are broken
// and measured flush left, and aligned only when drawn, so that alignment never changes a size. The
// first letter with a direction sets the direction of the text.
class LaidOutText {
public:
    LaidOutText(const StyledText& text, double width);

    // measuredRect() is the used rectangle flush left, usedRect() the aligned one as drawn. Canvas
    // pixels from the top left of the first line's box. Empty for an empty text or a width of 1 or
    // less.
    QRectF measuredRect() const { return m_measured; }
    QRectF usedRect() const;    // only on the thread that made the layout
    double fontSize() const { return m_scale * DesignFont::designPixelSize; }    // canvas pixels
    int lineCount() const { return m_layout ? m_layout->lineCount() : 0; }
    // The area of each line's letters, from capital height to baseline, in canvas pixels from the
    // top left of the box. Leaves out emoji, which have their own colours. Only on the thread that
    // made the layout.
    QList<QRectF> letterBands() const;
    // The glyphs to draw, at designPixelSize, from the top left of the box. Only on the thread that
    // made the layout.
    QList<QGlyphRun> glyphRuns() const;
    // Whether no installed font has one of the characters. Only on the thread that made the layout.
    bool lacksGlyphs() const;
    bool isBold() const;    // judged by the font found, not by its name
    // Draws in the painter's pen colour; `topLeft` is that of the box. Only on the thread that made
    // the layout.
    void draw(QPainter& painter, QPointF topLeft) const;
    // Widths of the whole text in one line, and of its widest unbreakable part; canvas pixels. Only
    // for a layout of unlimited width.
    double naturalWidth() const { return m_layout ? m_layout->maximumWidth() * m_scale : 0; }
    double narrowestWidth() const { return m_layout ? m_layout->minimumWidth() * m_scale : 0; }

private:
    std::shared_ptr<QTextLayout> m_layout;
    double m_scale = 1;
    QRectF m_measured;
};

namespace TextLayoutMetrics {

QRectF measuredRect(const StyledText& text, double width);
// The measured size, each side rounded up to a whole number.
QSizeF measuredSize(const StyledText& text, double width);
QSizeF measuredSize(const LaidOutText& text);
// Where to draw the lines, vertically centred in the box; text taller than the box starts at its
// top.
QRectF verticallyCenteredRect(const StyledText& text, const QRectF& box);
QRectF verticallyCenteredRect(const QRectF& measured, const QRectF& box);

}    // namespace TextLayoutMetrics
