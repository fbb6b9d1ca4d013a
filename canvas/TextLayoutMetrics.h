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
    double scale() const { return size / designPixelSize; }    // canvas pixels per pixel of `face`
};

// A text with everything that decides where its lines break, except the width.
struct StyledText {
    QString text;
    DesignFont font;
    LayerTextAlignment alignment = LayerTextAlignment::leading;
};

// A text broken between words into lines of a given width. Lines are broken and measured flush left
// and aligned only when drawn, so that the alignment never changes a size. The first letter that
// belongs to a left-to-right or right-to-left script sets the direction of the text.
class LaidOutText {
public:
    LaidOutText(const StyledText& text, double width);

    // The rectangle that the lines take: measuredRect() when flush left, usedRect() when aligned,
    // as they are drawn. In canvas pixels from the point at which the text is drawn (see draw()).
    // Empty for an empty text or a width of 1 or less.
    QRectF measuredRect() const { return m_measured; }
    QRectF usedRect() const;    // only on the thread that made the layout
    double fontSize() const { return m_scale * DesignFont::designPixelSize; }    // canvas pixels
    int lineCount() const { return m_layout ? m_layout->lineCount() : 0; }
    // The parts of each line that hold letters, from the baseline to the height of capitals, in
    // canvas pixels from the point at which the text is drawn. Parts with emoji are left out,
    // because emoji have their own colours. Only on the thread that made the layout.
    QList<QRectF> letterBands() const;
    // The glyphs to draw, at designPixelSize; their positions start from the point at which the
    // text is drawn. Only on the thread that made the layout.
    QList<QGlyphRun> glyphRuns() const;
    // Whether the text has a character that no installed font has. Only on the thread that made the
    // layout.
    bool lacksGlyphs() const;
    bool isBold() const;    // judged by the font that is used, not by the wanted name
    // Draws in the painter's pen colour. `topLeft`: top left corner of the area in which the lines
    // are laid out. Only on the thread that made the layout.
    void draw(QPainter& painter, QPointF topLeft) const;
    // naturalWidth() is the width of the whole text in one line, narrowestWidth() that of its
    // widest part that cannot be broken. In canvas pixels; only for a layout of unlimited width.
    double naturalWidth() const { return m_layout ? m_layout->maximumWidth() * m_scale : 0; }
    double narrowestWidth() const { return m_layout ? m_layout->minimumWidth() * m_scale : 0; }

private:
    std::shared_ptr<QTextLayout> m_layout;
    double m_scale = 1;
    QRectF m_measured;
};

namespace TextLayoutMetrics {

QRectF measuredRect(const StyledText& text, double width);
// The size of measuredRect(), each side rounded up to a whole number.
QSizeF measuredSize(const StyledText& text, double width);
QSizeF measuredSize(const LaidOutText& text);
// Where to draw a text so that it is vertically centred in the box. A text taller than the box
// starts at the top of the box.
QRectF verticallyCenteredRect(const StyledText& text, const QRectF& box);
QRectF verticallyCenteredRect(const QRectF& measured, const QRectF& box);

}    // namespace TextLayoutMetrics
