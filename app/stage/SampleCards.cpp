#include "app/stage/SampleCards.h"

#include "app/theme/Painting.h"

#include <QPainterPath>
#include <QPixmapCache>
#include <QRandomGenerator>

using namespace Qt::StringLiterals;

namespace {

constexpr QSizeF mainSize(166, 207), sideSize(130, 162);

QLinearGradient downwards(double from, double to, const QGradientStops& stops)
{
    QLinearGradient gradient(0, from, 0, to);
    gradient.setStops(stops);
    return gradient;
}

struct Range {
    double base, height;    // y of the mountains' foot and of the highest summit, from the top
    double roughness;       // 0 (smooth) to 1
    quint32 seed;
};

// The outline of a mountain range, made by midpoint displacement. Equal seeds give equal outlines
// on every machine.
QPainterPath ridge(const QSizeF& card, const Range& range)
{
    constexpr int points = 65;
    std::array<double, points> heights{};
    QRandomGenerator random(range.seed);
    heights.front() = random.generateDouble() * 0.6;
    heights.back() = random.generateDouble() * 0.6;
    double reach = 0.55;
    for (int step = points - 1; step > 1; step /= 2) {
        for (int i = step / 2; i < points; i += step) {
            const auto at = std::size_t(i);
            const double middle =
                (heights[at - std::size_t(step / 2)] + heights[at + std::size_t(step / 2)]) / 2;
            heights[at] = middle + (random.generateDouble() - 0.35) * reach;
        }
        reach *= 0.35 + 0.25 * range.roughness;
    }
    const double peak = *std::ranges::max_element(heights);
    const double lowest = *std::ranges::min_element(heights);
    QPainterPath path(QPointF(0, card.height()));
    for (int i = 0; i < points; ++i) {
        const double share = (heights[std::size_t(i)] - lowest) / (peak - lowest);
        path.lineTo(card.width() * i / (points - 1),
                    range.base - share * (range.base - range.height));
    }
    path.lineTo(card.width(), card.height());
    path.closeSubpath();
    return path;
}

// Paints light and dark facets down the slope, so that the rock looks lit from one side.
void paintRock(QPainter& painter, const QPainterPath& shape, const QSizeF& card, quint32 seed)
{
    const SavedPainter saved(painter);
    painter.setClipPath(shape);
    QRandomGenerator random(seed);
    for (int i = 0; i < 150; ++i) {
        const double x = random.generateDouble() * card.width();
        const double y = card.height() * (0.28 + random.generateDouble() * 0.42);
        const double length = 6 + random.generateDouble() * 22;
        const bool lit = random.generateDouble() < 0.45;
        QColor color = lit ? QColor(232, 232, 236) : QColor(38, 40, 52);
        color.setAlpha(lit ? 26 : 40);
        QPolygonF facet{QPointF(x, y), QPointF(x + (lit ? -1 : 1) * length * 0.55, y + length),
                        QPointF(x + (lit ? 1 : -1) * length * 0.12, y + length * 0.8)};
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawPolygon(facet);
    }
}

void paintCloud(QPainter& painter, const QPointF& middle, double size)
{
    painter.setPen(Qt::NoPen);
    const std::array puffs{QPointF(-1.1, 0.1), QPointF(-0.4, -0.25), QPointF(0.4, -0.1),
                           QPointF(1.1, 0.15), QPointF(0, 0.25)};
    for (const QPointF& puff : puffs) {
        QRadialGradient soft(middle + puff * size, size);
        soft.setColorAt(0, QColor(255, 255, 255, 150));
        soft.setColorAt(0.35, QColor(255, 255, 255, 80));
        soft.setColorAt(0.7, QColor(255, 255, 255, 0));
        soft.setColorAt(1, QColor(255, 255, 255, 0));
        painter.setBrush(soft);
        painter.drawEllipse(middle + puff * size, size, size * 0.7);
    }
}

void paintWords(QPainter& painter, const QRectF& rect, double pixels, QFont::Weight weight,
                const QColor& color, const QString& text)
{
    QFont font(u"Inter Display"_qs);
    font.setPixelSize(64);
    font.setWeight(weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setLetterSpacing(QFont::PercentageSpacing, 98.5);
    const SavedPainter saved(painter);
    const double scale = pixels / 64;
    painter.translate(rect.topLeft());
    painter.scale(scale, scale);
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(QRectF(QPointF(), rect.size() / scale), Qt::AlignLeft | Qt::AlignTop, text);
}

void paintPeak(QPainter& painter, const QSizeF& card)
{
    QPainterPath peak(QPointF(card.width() * 0.22, card.height()));
    const std::array outline{QPointF(0.20, 0.64), QPointF(0.33, 0.52), QPointF(0.40, 0.50),
                             QPointF(0.44, 0.37), QPointF(0.50, 0.33), QPointF(0.54, 0.25),
                             QPointF(0.60, 0.21), QPointF(0.64, 0.26), QPointF(0.70, 0.24),
                             QPointF(0.77, 0.33), QPointF(0.84, 0.31), QPointF(0.92, 0.39),
                             QPointF(1.00, 0.35), QPointF(1.00, 1.00)};
    for (const QPointF& point : outline)
        peak.lineTo(point.x() * card.width(), point.y() * card.height());
    peak.closeSubpath();
    painter.fillPath(peak, downwards(card.height() * 0.2, card.height() * 0.72,
                                     {{0, 0x8E8F99}, {0.5, 0x6B6C76}, {1, 0x595A5C}}));
    paintRock(painter, peak, card, 5);
    {
        const SavedPainter saved(painter);
        painter.setClipPath(peak);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(245, 247, 252, 225));
        const std::array snow{
            QPolygonF{{0.585, 0.25}, {0.60, 0.21}, {0.64, 0.26}, {0.63, 0.33}, {0.61, 0.29}},
            QPolygonF{{0.70, 0.25}, {0.76, 0.33}, {0.73, 0.38}, {0.71, 0.31}},
            QPolygonF{{0.86, 0.33}, {0.93, 0.40}, {0.90, 0.46}, {0.885, 0.39}},
            QPolygonF{{0.56, 0.585}, {0.80, 0.63}, {1.0, 0.60}, {1.0, 0.65}, {0.74, 0.655}}};
        for (QPolygonF patch : snow) {
            for (QPointF& point : patch)
                point = {point.x() * card.width(), point.y() * card.height()};
            painter.drawPolygon(patch);
        }
    }
}

void paintMeadow(QPainter& painter, const QSizeF& card)
{
    QPainterPath meadow(QPointF(0, card.height() * 0.53));
    meadow.cubicTo(card.width() * 0.3, card.height() * 0.58, card.width() * 0.5,
                   card.height() * 0.66, card.width(), card.height() * 0.70);
    meadow.lineTo(card.width(), card.height());
    meadow.lineTo(0, card.height());
    meadow.closeSubpath();
    painter.fillPath(meadow, downwards(card.height() * 0.53, card.height(),
                                       {{0, 0x6E7440}, {0.35, 0x565C30}, {1, 0x2F3519}}));
    QPainterPath path(QPointF(card.width() * 0.50, card.height() * 0.645));
    path.cubicTo(card.width() * 0.30, card.height() * 0.70, card.width() * 0.10,
                 card.height() * 0.72, card.width() * 0.12, card.height());
    path.lineTo(card.width() * 0.34, card.height());
    path.cubicTo(card.width() * 0.20, card.height() * 0.76, card.width() * 0.36,
                 card.height() * 0.71, card.width() * 0.515, card.height() * 0.647);
    painter.fillPath(
        path, downwards(card.height() * 0.64, card.height(), {{0, 0x9A7F62}, {1, 0x5D4634}}));
}

void paintMountainWords(QPainter& painter, const QSizeF& card)
{
    const std::array headline{u"Respira otoño en"_qs, u"los Picos"_qs};
    for (std::size_t line = 0; line < headline.size(); ++line)
        paintWords(painter, {11, 10.0 + 18.5 * double(line), card.width(), 24}, 17, QFont::Bold,
                   Qt::white, headline[line]);
    fillRounded(painter, {11, 57, 22, 1.5}, 0.75, QColor(0xF7EBDD));
    const QRectF box(11.5, card.height() - 64, card.width() - 23, 51);
    fillRounded(painter, box, 4.5, QColor(16, 34, 26, 224));
    paintWords(painter, box.adjusted(6.5, 4.5, 0, 0), 7.2, QFont::DemiBold, QColor(0xF3EADF),
               u"Casas rurales con chimenea, a un paso\ndel sendero."_qs);
    const QRectF call(box.left() + 6.5, box.bottom() - 23, 63, 16);
    fillRounded(painter, call, 3, QColor(0xF7EBDD));
    paintWords(painter, call.adjusted(10, 3.4, 0, 0), 6.8, QFont::Bold, QColor(0x16241C),
               u"Reserva ahora"_qs);
}

void paintMountain(QPainter& painter, const QSizeF& card)
{
    const QRectF all(QPointF(), card);
    painter.fillRect(
        all, downwards(0, card.height() * 0.6, {{0, 0x2B4A7E}, {0.45, 0x4E7BB4}, {1, 0xB9D2E6}}));
    paintCloud(painter, {card.width() * 0.24, card.height() * 0.40}, 26);
    paintCloud(painter, {card.width() * 0.06, card.height() * 0.47}, 22);

    const QPainterPath far = ridge(card, {card.height() * 0.72, card.height() * 0.46, 0.5, 23});
    painter.fillPath(
        far, downwards(card.height() * 0.4, card.height() * 0.7, {{0, 0x6F7C95}, {1, 0x9AA6B8}}));
    paintPeak(painter, card);
    paintMeadow(painter, card);
    paintMountainWords(painter, card);
}

void paintValley(QPainter& painter, const QSizeF& card)
{
    const QRectF all(QPointF(), card);
    painter.fillRect(all, downwards(0, card.height() * 0.5, {{0, 0xC9DDEC}, {1, 0xEEF3F5}}));
    paintCloud(painter, {card.width() * 0.35, card.height() * 0.10}, 24);
    const double h = card.height();
    painter.fillPath(ridge(card, {h * 0.55, h * 0.20, 0.55, 11}),
                     downwards(h * 0.15, h * 0.55, {{0, 0x6E83A4}, {1, 0xA3B1C4}}));
    painter.fillPath(ridge(card, {h * 0.60, h * 0.37, 0.7, 31}),
                     downwards(h * 0.32, h * 0.6, {{0, 0x5B6E8E}, {1, 0x8593A4}}));
    painter.fillPath(ridge(card, {h * 0.62, h * 0.45, 1.0, 42}),
                     downwards(h * 0.45, h * 0.66, {{0, 0xC58143}, {1, 0x8F5527}}));
    painter.fillPath(ridge(card, {h * 0.68, h * 0.54, 1.0, 57}),
                     downwards(h * 0.5, h * 0.7, {{0, 0xB06B2C}, {1, 0x6E4B22}}));
    painter.fillPath(ridge(card, {h * 0.69, h * 0.63, 0.2, 3}),
                     downwards(h * 0.62, h, {{0, 0x7FA03C}, {0.4, 0x5C8A31}, {1, 0x355A20}}));
}

void paintSunset(QPainter& painter, const QSizeF& card)
{
    const double w = card.width(), h = card.height();
    painter.fillRect(
        QRectF(QPointF(), card),
        downwards(0, h * 0.75, {{0, 0x3C2A5E}, {0.3, 0x9C3F62}, {0.6, 0xE8663F}, {1, 0xFFC46B}}));
    QRadialGradient glow(QPointF(w * 0.58, h * 0.47), w * 0.6);
    glow.setColorAt(0, QColor(255, 236, 180, 210));
    glow.setColorAt(0.25, QColor(255, 190, 110, 120));
    glow.setColorAt(1, QColor(255, 150, 80, 0));
    painter.fillRect(QRectF(QPointF(), card), glow);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xFFF3D0));
    painter.drawEllipse(QPointF(w * 0.58, h * 0.47), w * 0.105, w * 0.105);
    painter.fillPath(ridge(card, {h * 0.68, h * 0.50, 0.25, 19}),
                     downwards(h * 0.45, h * 0.75, {{0, 0xB4502F}, {1, 0xD9703A}}));
    painter.fillPath(ridge(card, {h * 0.80, h * 0.61, 0.1, 6}),
                     downwards(h * 0.6, h * 0.85, {{0, 0x8A2F27}, {1, 0xA83E28}}));
    painter.fillPath(ridge(card, {h * 0.95, h * 0.74, 0.05, 14}),
                     downwards(h * 0.72, h, {{0, 0x54202A}, {1, 0x2B1320}}));
}

}    // namespace

QSizeF sampleCardSize(SampleCard card)
{
    return card == SampleCard::mountain ? mainSize : sideSize;
}

QPixmap sampleCard(SampleCard card, double ratio)
{
    const QString key = u"sample/%1/%2"_qs.arg(int(card)).arg(ratio);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    const QSizeF size = sampleCardSize(card);
    const double radius = card == SampleCard::mountain ? 8 : 7;
    QImage image((size * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QImage scene = image;
    QPainter painter(&scene);
    painter.setRenderHint(QPainter::Antialiasing);
    switch (card) {
    case SampleCard::mountain:
        paintMountain(painter, size);
        break;
    case SampleCard::valley:
        paintValley(painter, size);
        break;
    case SampleCard::sunset:
        paintSunset(painter, size);
        break;
    }
    painter.end();
    QPainter shape(&image);
    shape.setRenderHint(QPainter::Antialiasing);
    fillRounded(shape, QRectF(QPointF(), size), radius, Qt::white);
    shape.setCompositionMode(QPainter::CompositionMode_SourceIn);
    shape.drawImage(0, 0, scene);
    shape.end();
    pixmap = QPixmap::fromImage(image);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}
