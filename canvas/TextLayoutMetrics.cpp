#include "canvas/TextLayoutMetrics.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>
#include <QRawFont>
#include <QTextBoundaryFinder>

#include <unicode/uchar.h>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr QChar asText = QChar(0xFE0E), asEmoji = QChar(0xFE0F);
// No character before this one is drawn as an emoji by itself.
constexpr QChar firstEmoji = QChar(0x203C);

bool isColourEmoji(QStringView cluster)
{
    if (cluster.contains(asEmoji))
        return true;
    const QList<uint> characters = cluster.toUcs4();
    const auto isPresented = [](uint c) {
        return u_hasBinaryProperty(UChar32(c), UCHAR_EMOJI_PRESENTATION);
    };
    // The first character may be a plain sign that a later one, such as a skin tone, turns into an
    // emoji.
    const bool isPicture =
        isPresented(characters.first()) ||
        (u_hasBinaryProperty(UChar32(characters.first()), UCHAR_EXTENDED_PICTOGRAPHIC) &&
         std::ranges::any_of(characters, isPresented));
    return isPicture && !cluster.contains(asText);
}

struct LayoutText {
    QString text;
    QList<QTextLayout::FormatRange> emoji;    // the parts of `text` to be drawn in the emoji font
};

// Marks the emoji to be drawn in the emoji font. QTextLayout by itself takes an emoji from any font
// that has it, often from one with black emoji. It prefers the text's own font, even where U+FE0F
// asks for a coloured emoji. U+FE0F is removed except at the end of a cluster: the emoji font has
// no glyph for it, and a glyph from another font would split the emoji in two.
LayoutText withColourEmoji(const QString& text)
{
    if (std::ranges::none_of(text, [](QChar c) { return c >= firstEmoji; }))
        return {text, {}};
    QTextCharFormat format;
    format.setFontFamilies({u"Noto Color Emoji"_s});
    LayoutText result;
    QTextBoundaryFinder clusters(QTextBoundaryFinder::Grapheme, text);
    qsizetype start = 0;
    while (clusters.toNextBoundary() != -1) {
        const qsizetype end = clusters.position();
        QString cluster = text.mid(start, end - start);
        if (isColourEmoji(cluster)) {
            const QChar last = cluster.back();
            cluster = cluster.chopped(1).remove(asEmoji) + last;
            result.emoji.append({int(result.text.size()), int(cluster.size()), format});
        }
        result.text += cluster;
        start = end;
    }
    return result;
}

// Replaces line breaks with QChar::LineSeparator, at which QTextLayout breaks lines.
QString withLineSeparators(QString text)
{
    text.replace("\r\n"_L1, "\n"_L1);
    std::ranges::replace_if(
        text, [](QChar c) { return c == u'\n' || c == u'\r' || c == QChar::ParagraphSeparator; },
        QChar::LineSeparator);
    return text;
}

struct Stretch {
    double left, right;
};

// The horizontal ranges of a line's emoji and of the blanks beside them, from left to right, in
// pixels at designPixelSize. `emoji`: the emoji of the whole text.
QList<Stretch> emojiStretches(const QList<QTextLayout::FormatRange>& emoji, const QString& text,
                              const QTextLine& line)
{
    const int start = line.textStart(), end = start + line.textLength();
    QList<Stretch> stretches;
    const auto add = [&](int position) {
        const double from = line.cursorToX(position, QTextLine::Leading);
        const double to = line.cursorToX(position, QTextLine::Trailing);
        stretches.append({std::min(from, to), std::max(from, to)});
    };
    auto one = std::ranges::lower_bound(emoji, start, {}, &QTextLayout::FormatRange::start);
    for (; one != emoji.end() && one->start < end; ++one) {
        add(one->start);
        for (int i = one->start - 1; i >= start && text[i].isSpace(); --i)
            add(i);
        for (int i = one->start + one->length; i < end && text[i].isSpace(); ++i)
            add(i);
    }
    std::ranges::sort(stretches, {}, &Stretch::left);
    return stretches;
}

// Returns absolute sides, which are not mirrored in right-to-left text.
Qt::Alignment qtAlignment(LayerTextAlignment alignment)
{
    switch (alignment) {
    case LayerTextAlignment::leading:
        return Qt::AlignLeft | Qt::AlignAbsolute;
    case LayerTextAlignment::center:
        return Qt::AlignHCenter;
    case LayerTextAlignment::trailing:
        return Qt::AlignRight | Qt::AlignAbsolute;
    case LayerTextAlignment::justified:
        return Qt::AlignJustify;
    }
    Q_UNREACHABLE();
}

}    // namespace

LaidOutText::LaidOutText(const StyledText& text, double width) : m_scale(text.font.scale())
{
    if (!(width > 1) || text.text.isEmpty() || !(m_scale > 0))
        return;
    const LayoutText lines = withColourEmoji(withLineSeparators(text.text));
    m_layout = std::make_shared<QTextLayout>(lines.text, text.font.face);
    // Measures the lines flush left: a justified line takes the whole width, and after rounding up
    // it would never fit.
    QTextOption option(qtAlignment(LayerTextAlignment::leading));
    option.setTextDirection(Qt::LayoutDirectionAuto);    // not from the program's language
    option.setWrapMode(QTextOption::WordWrap);
    option.setUseDesignMetrics(true);
    m_layout->setTextOption(option);
    m_layout->setFormats(lines.emoji);
    m_layout->setCacheEnabled(true);

    // Limits the width, because QTextLayout calculates in 1/64 pixel with 32 bits.
    const double designWidth = std::min(width / m_scale, 1e7);
    double y = 0;
    m_layout->beginLayout();
    for (QTextLine line = m_layout->createLine(); line.isValid(); line = m_layout->createLine()) {
        line.setLeadingIncluded(true);
        line.setLineWidth(designWidth);
        line.setPosition({0, y});
        y += line.height();
    }
    m_layout->endLayout();
    m_measured = usedRect();
    option.setAlignment(qtAlignment(text.alignment));
    m_layout->setTextOption(option);
}

QRectF LaidOutText::usedRect() const
{
    QRectF used;
    for (int i = 0; i < lineCount(); ++i) {
        const QTextLine line = m_layout->lineAt(i);
        QRectF natural = line.naturalTextRect();
        natural.setHeight(line.height());
        used = used.isNull() ? natural : used.united(natural);
    }
    return {used.topLeft() * m_scale, used.size() * m_scale};
}

QList<QRectF> LaidOutText::letterBands() const
{
    if (!m_layout)
        return {};
    QList<QRectF> bands;
    const double capitals = QFontMetricsF(m_layout->font()).capHeight();
    const QList<QTextLayout::FormatRange> emoji = m_layout->formats();
    for (int i = 0; i < lineCount(); ++i) {
        const QTextLine line = m_layout->lineAt(i);
        const QRectF natural = line.naturalTextRect();
        const double baseline = line.y() + line.ascent();
        double left = natural.left();
        const auto add = [&](double right) {
            if (right - left > 1)    // a narrower gap between two emoji comes from rounding
                bands.append({left * m_scale, (baseline - capitals) * m_scale,
                              (right - left) * m_scale, capitals * m_scale});
        };
        for (const Stretch& stretch : emojiStretches(emoji, m_layout->text(), line)) {
            add(stretch.left);
            left = std::max(left, stretch.right);
        }
        add(natural.right());
    }
    return bands;
}

QList<QGlyphRun> LaidOutText::glyphRuns() const
{
    return m_layout ? m_layout->glyphRuns() : QList<QGlyphRun>();
}

bool LaidOutText::lacksGlyphs() const
{
    return std::ranges::any_of(glyphRuns(), [](const QGlyphRun& run) {
        return run.glyphIndexes().contains(0);    // glyph 0 stands for a missing character
    });
}

bool LaidOutText::isBold() const
{
    return m_layout && QRawFont::fromFont(m_layout->font()).weight() >= QFont::Bold;
}

void LaidOutText::draw(QPainter& painter, QPointF topLeft) const
{
    if (!m_layout)
        return;
    painter.save();
    painter.translate(topLeft);
    painter.scale(m_scale, m_scale);
    m_layout->draw(&painter, QPointF());
    painter.restore();
}

QRectF TextLayoutMetrics::measuredRect(const StyledText& text, double width)
{
    return LaidOutText(text, width).measuredRect();
}

QSizeF TextLayoutMetrics::measuredSize(const StyledText& text, double width)
{
    return measuredSize(LaidOutText(text, width));
}

QSizeF TextLayoutMetrics::measuredSize(const LaidOutText& text)
{
    return {std::ceil(text.measuredRect().width()), std::ceil(text.measuredRect().height())};
}

QRectF TextLayoutMetrics::verticallyCenteredRect(const StyledText& text, const QRectF& box)
{
    return verticallyCenteredRect(measuredRect(text, box.width()), box);
}

QRectF TextLayoutMetrics::verticallyCenteredRect(const QRectF& measured, const QRectF& box)
{
    const double height = std::min(std::ceil(measured.height()), box.height());
    const double y = box.y() + (box.height() - height) / 2 - measured.y();
    return {box.x(), y, box.width(), std::max(height, 1.0)};
}
