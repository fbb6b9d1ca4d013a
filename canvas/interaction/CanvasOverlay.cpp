#include "canvas/interaction/CanvasOverlay.h"

#include <QFontMetrics>
#include <QPixmap>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr double lineWidth = 1.5, hairlineOpacity = 0.34, hoverOpacity = 0.6;
constexpr double tagHeight = 20, tagPadding = 7, tagGap = 4, tagRadius = 5, widestTag = 120;
constexpr double handleRadius = 7, handleOpacity = 0.88;
constexpr double guideOpacity = 0.95, guideDash = 8, guideGap = 6;
constexpr double hatchStep = 12, zoneDash = 4, zoneGap = 3;
constexpr double ringGap = 2, ringWidth = 2;
constexpr double labelLeft = 10, labelGap = 9, labelHeight = 18, labelPadding = 6;
// Limit of coordinates, in screen pixels. A frame read from a file may hold any number, but nothing
// beyond this limit can be seen.
constexpr double farthestDrawn = 30000;

QFont labelFont(QFont::Weight weight, int pixels)
{
    QFont font(u"Inter"_s);
    font.setPixelSize(pixels);
    font.setWeight(weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

QColor withOpacity(QColor color, double opacity)
{
    color.setAlphaF(float(opacity));
    return color;
}

// A tile of diagonal lines that continue in the neighbouring tiles.
QPixmap hatch(int side, int width)
{
    QPixmap tile(side, side);
    tile.fill(withOpacity(Qt::black, 0.56));
    QPainter painter(&tile);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(withOpacity(Qt::white, 0.16), width));
    for (const int shift : {-side, 0, side})
        painter.drawLine(QPointF(shift - side, 2 * side), QPointF(shift + 2 * side, -side));
    return tile;
}

}    // namespace

CanvasOverlay::CanvasOverlay(QPainter& painter, const QRect& canvas, QSize pixels)
    : m_painter(painter), m_ratio(painter.device()->devicePixelRatioF())
{
    const QTransform toDevice = painter.deviceTransform();
    // Rounds, because at a pixel ratio such as 1.25 a widget may begin inside a screen pixel.
    const QPointF corner = toDevice.map(QPointF(canvas.topLeft()));
    m_canvas = QRect(QPoint(int(std::lround(corner.x())), int(std::lround(corner.y()))), pixels);
    m_painter.save();
    m_painter.setTransform(toDevice.inverted(), true);
}

QRect CanvasOverlay::toScreen(const QRectF& rect) const
{
    const auto pixel = [this](double logical) {
        const double at = logical * m_ratio;
        return int(std::lround(at > -farthestDrawn ? std::min(at, farthestDrawn) : -farthestDrawn));
    };
    const int left = pixel(rect.left()), top = pixel(rect.top());
    return QRect(left, top, std::max(pixel(rect.right()) - left, 0),
                 std::max(pixel(rect.bottom()) - top, 0))
        .translated(m_canvas.topLeft());
}

int CanvasOverlay::screenPixels(double logical) const
{
    return std::max(1, int(std::lround(logical * m_ratio)));
}

// Fills a band along the edges of `rect`. `inside` and `outside` are the widths of its parts inside
// and outside of the edges.
void CanvasOverlay::fillRing(const QRect& rect, int inside, int outside, const QColor& color)
{
    const QRect outer = rect.adjusted(-outside, -outside, outside, outside);
    const int width = inside + outside;
    if (outer.width() <= 2 * width || outer.height() <= 2 * width)
        return m_painter.fillRect(outer, color);
    m_painter.fillRect(QRect(outer.left(), outer.top(), outer.width(), width), color);
    m_painter.fillRect(QRect(outer.left(), outer.bottom() - width + 1, outer.width(), width),
                       color);
    const int between = outer.height() - 2 * width;
    m_painter.fillRect(QRect(outer.left(), outer.top() + width, width, between), color);
    m_painter.fillRect(QRect(outer.right() - width + 1, outer.top() + width, width, between),
                       color);
}

void CanvasOverlay::drawSelection(const QRectF& layer, const QString& name, const QColor& line,
                                  const QColor& tag)
{
    const QRect frame = toScreen(layer);
    const int width = screenPixels(lineWidth), inside = width / 2, outside = width - inside;
    const int hair = std::max(1, int(m_ratio));
    const QColor dark = withOpacity(Qt::black, hairlineOpacity);
    fillRing(frame.adjusted(-outside, -outside, outside, outside), 0, hair, dark);
    fillRing(frame.adjusted(inside, inside, -inside, -inside), hair, 0, dark);
    fillRing(frame, inside, outside, line);
    drawTag(frame, name, tag);
}

void CanvasOverlay::drawTag(const QRect& frame, const QString& name, const QColor& color)
{
    const QFont font = labelFont(QFont::DemiBold, screenPixels(11));
    const int width =
        std::min(QFontMetrics(font).horizontalAdvance(name) + 2 * screenPixels(tagPadding),
                 screenPixels(widestTag));
    const int height = screenPixels(tagHeight), gap = screenPixels(tagGap);
    const int lowest = m_canvas.bottom() + 1 - height;
    const int rightmost = m_canvas.right() + 1 - width;
    int top = frame.top() - gap - height;
    if (top < m_canvas.top())    // no space above the frame: puts the tag below it
        top = frame.bottom() + 1 + gap;
    if (top > lowest)    // no space below the frame either: puts the tag inside it
        top = std::max(frame.top(), m_canvas.top()) + gap;
    const QRect box(std::max(std::min(frame.left(), rightmost), m_canvas.left()),
                    std::max(std::min(top, lowest), m_canvas.top()), width, height);
    m_painter.setRenderHint(QPainter::Antialiasing);
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(color);
    m_painter.drawRoundedRect(box, tagRadius * m_ratio, tagRadius * m_ratio);
    m_painter.setRenderHint(QPainter::Antialiasing, false);
    m_painter.setFont(font);
    m_painter.setPen(Qt::white);
    m_painter.drawText(box, int(Qt::AlignCenter) | Qt::TextSingleLine, name);
}

void CanvasOverlay::drawHover(const QRectF& layer, const QColor& line)
{
    fillRing(toScreen(layer), screenPixels(1), 0, withOpacity(line, hoverOpacity));
}

void CanvasOverlay::drawResizeHandle(const QRectF& handle)
{
    const QRect box = toScreen(handle);
    const int outline = screenPixels(lineWidth);
    const QColor ink = withOpacity(Qt::black, handleOpacity);
    m_painter.setRenderHint(QPainter::Antialiasing);
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(Qt::white);
    const double radius = handleRadius * m_ratio, half = outline / 2.0;
    m_painter.drawRoundedRect(box, radius, radius);
    m_painter.setPen(QPen(ink, outline));
    m_painter.setBrush(Qt::NoBrush);
    m_painter.drawRoundedRect(QRectF(box).adjusted(half, half, -half, -half), radius - half,
                              radius - half);
    m_painter.setPen(QPen(ink, lineWidth * m_ratio, Qt::SolidLine, Qt::RoundCap));
    const QPointF middle = QRectF(box).center();
    const auto stroke = [&](QPointF from, QPointF to) {
        m_painter.drawLine(middle + from * m_ratio, middle + to * m_ratio);
    };
    stroke({-4.5, 5.5}, {5.5, -4.5});
    stroke({0.5, 5.5}, {5.5, 0.5});
    m_painter.setRenderHint(QPainter::Antialiasing, false);
}

// Fills dashes along the longer side of `line`.
void CanvasOverlay::fillDashes(const QRect& line, double dash, double gap, const QColor& color)
{
    const bool upright = line.height() > line.width();
    const int length = upright ? line.height() : line.width();
    const int drawn = screenPixels(dash), step = drawn + screenPixels(gap);
    for (int at = 0; at < length; at += step) {
        const int part = std::min(drawn, length - at);
        m_painter.fillRect(upright ? QRect(line.left(), line.top() + at, line.width(), part)
                                   : QRect(line.left() + at, line.top(), part, line.height()),
                           color);
    }
}

void CanvasOverlay::drawSnapGuides(SnapGuides guides, const QColor& line)
{
    const int width = screenPixels(lineWidth);
    const QColor color = withOpacity(line, guideOpacity);
    if (guides.vertical)
        fillDashes(QRect(m_canvas.left() + (m_canvas.width() - width) / 2, m_canvas.top(), width,
                         m_canvas.height()),
                   guideDash, guideGap, color);
    if (guides.horizontal)
        fillDashes(QRect(m_canvas.left(), m_canvas.top() + (m_canvas.height() - width) / 2,
                         m_canvas.width(), width),
                   guideDash, guideGap, color);
}

void CanvasOverlay::drawFocusRing(const QColor& line)
{
    const int gap = screenPixels(ringGap);
    fillRing(m_canvas.adjusted(-gap, -gap, gap, gap), 0, screenPixels(ringWidth), line);
}

void CanvasOverlay::drawSafeZone(double top, double bottom)
{
    const auto height = [this](double share) {
        return int(std::lround(share * m_canvas.height()));
    };
    const QRect above(m_canvas.topLeft(), QSize(m_canvas.width(), height(top)));
    const QRect below(m_canvas.left(), m_canvas.bottom() + 1 - height(bottom), m_canvas.width(),
                      height(bottom));
    const int edge = screenPixels(1);
    const QPixmap tile = hatch(screenPixels(hatchStep), screenPixels(1));
    for (const QRect& band : {above, below})
        m_painter.drawTiledPixmap(band, tile);
    const QColor white = withOpacity(Qt::white, 0.85);
    fillDashes(QRect(above.left(), above.bottom() + 1 - edge, above.width(), edge), zoneDash,
               zoneGap, white);
    fillDashes(QRect(below.left(), below.top(), below.width(), edge), zoneDash, zoneGap, white);
    const int gap = screenPixels(labelGap), left = screenPixels(labelLeft);
    drawLabel(above.adjusted(left, gap, -gap, -gap), u"Fuera de la zona segura"_s, Qt::AlignBottom);
    drawLabel(below.adjusted(left, gap, -gap, -gap), u"Fuera de la zona segura"_s, Qt::AlignTop);
}

void CanvasOverlay::drawLabel(const QRect& box, const QString& text, Qt::Alignment alignment)
{
    const QFont font = labelFont(QFont::Medium, screenPixels(11));
    const QSize size(QFontMetrics(font).horizontalAdvance(text) + 2 * screenPixels(labelPadding),
                     screenPixels(labelHeight));
    if (size.width() > box.width() || size.height() > box.height())
        return;
    const QRect chip(box.left(),
                     alignment == Qt::AlignTop ? box.top() : box.bottom() + 1 - size.height(),
                     size.width(), size.height());
    m_painter.setRenderHint(QPainter::Antialiasing);
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(withOpacity(Qt::black, 0.62));
    m_painter.drawRoundedRect(chip, chip.height() / 2.0, chip.height() / 2.0);
    m_painter.setRenderHint(QPainter::Antialiasing, false);
    m_painter.setFont(font);
    m_painter.setPen(Qt::white);
    m_painter.drawText(chip, int(Qt::AlignCenter) | Qt::TextSingleLine, text);
}

QRectF CanvasOverlay::selectionExtent(const QRectF& layer, const QSizeF& canvas)
{
    // The resize handle reaches further beyond the frame than the lines. The tag may be moved to
    // stay on the canvas.
    const double reach = CanvasInteraction::resizeHandleSide / 2 + 2;
    const QRectF frame = layer.normalized().adjusted(-reach, -reach, reach, reach);
    const double tagLeft = std::clamp(layer.left(), 0.0, std::max(canvas.width() - widestTag, 0.0));
    const auto tagAt = [&](double top) {
        return QRectF(tagLeft - widestTag,
                      std::clamp(top, 0.0, std::max(canvas.height() - tagHeight, 0.0)) - tagGap,
                      3 * widestTag, 3 * tagHeight);
    };
    const double above = layer.top() - tagGap - tagHeight;
    const QRectF extent = frame.united(tagAt(above));
    // If there is no space above the frame, drawTag() puts the tag below it.
    return above > tagGap ? extent : extent.united(tagAt(layer.bottom() + tagGap));
}
