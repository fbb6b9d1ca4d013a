#include "app/theme/Painting.h"

#include <QBitmap>
#include <QFontMetricsF>
#include <QPainterPath>
#include <QPixmapCache>
#include <QTextDocument>

using namespace Qt::StringLiterals;

void fillRounded(QPainter& painter, const QRectF& rect, Corners radii, const QColor& color)
{
    if (radii.left == radii.right)
        return fillRounded(painter, rect, radii.left, color);
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    const QRectF left(rect.topLeft(), QSizeF(rect.width() / 2, rect.height()));
    path.addRoundedRect(left, radii.left, radii.left);
    path.addRoundedRect(left.translated(rect.width() / 2, 0), radii.right, radii.right);
    path.addRect(rect.adjusted(radii.left, 0, -radii.right, 0));
    painter.fillPath(path, color);
}

void fillRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& color)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(rect, radius, radius);
}

QRegion roundedRegion(const QRect& rect, double radius)
{
    QBitmap mask(rect.size());
    mask.clear();
    QPainter painter(&mask);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::color1);
    painter.drawRoundedRect(QRect(QPoint(), rect.size()), radius, radius);
    painter.end();
    return QRegion(mask).translated(rect.topLeft());
}

QImage roundedPicture(const QImage& picture, double radius)
{
    QImage image = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QImage mask(image.size(), QImage::Format_ARGB32_Premultiplied);
    mask.fill(Qt::transparent);
    QPainter maskPainter(&mask);
    maskPainter.setRenderHint(QPainter::Antialiasing);
    fillRounded(maskPainter, mask.rect(), radius, Qt::white);
    maskPainter.end();
    image.setDevicePixelRatio(1);
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawImage(0, 0, mask);
    return image;
}

void strokeRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& color,
                   double width)
{
    painter.setPen(QPen(color, width));
    painter.setBrush(Qt::NoBrush);
    const double half = width / 2;
    painter.drawRoundedRect(rect.adjusted(half, half, -half, -half), radius - half, radius - half);
}

void paintText(QPainter& painter, const QRectF& rect, Qt::Alignment alignment, Type type,
               const QColor& color, const QString& text, Qt::TextElideMode elide)
{
    const QFont font = fontOf(type);
    painter.setFont(font);
    painter.setPen(color);
    QString shown = text;
    if (elide != Qt::ElideNone && textWidth(type, text) > rect.width())
        shown = QFontMetricsF(font).elidedText(text, elide, rect.width());
    painter.drawText(
        rect, int(alignment | Qt::AlignVCenter) | Qt::TextSingleLine | Qt::TextDontClip, shown);
}

double textWidth(Type type, const QString& text)
{
    return QFontMetricsF(fontOf(type)).horizontalAdvance(text);
}

QString plainToolTip(const QString& text)
{
    constexpr int longest = 600;
    if (text.isEmpty())
        return {};
    QString shown = text.left(longest);
    if (text.size() > longest)
        shown += u'…';
    if (!Qt::mightBeRichText(shown))
        return shown;
    return u"<qt>"_qs + shown.toHtmlEscaped().replace(u'\n', u"<br>"_qs) + u"</qt>"_qs;
}

double digitsWidth(Type type, int digits)
{
    const QFontMetricsF metrics(fontOf(type));
    double widest = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
    return std::ceil(widest * digits);
}

void paintSpinner(QPainter& painter, const QRectF& box, const QColor& track, const QColor& arc,
                  double turn, double width)
{
    const QRectF circle = box.adjusted(width / 2, width / 2, -width / 2, -width / 2);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(track, width));
    painter.drawEllipse(circle);
    painter.setPen(QPen(arc, width, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(circle, qRound((90 - turn * 360) * 16), -110 * 16);
}

void paintShadow(QPainter& painter, const QRectF& rect, const Shadow& shadow)
{
    // A rectangle blurred by a Gaussian is the product of two profiles, each the difference of two
    // error functions. It is so smooth that a fifth of the resolution is enough.
    constexpr double step = 5;
    const QRectF bounds = rect.translated(0, shadow.offset)
                              .adjusted(-shadow.blur, -shadow.blur, shadow.blur, shadow.blur);
    const QSize cells(qCeil(bounds.width() / step), qCeil(bounds.height() / step));
    if (cells.isEmpty() || rect.isEmpty())
        return;
    const QString key = u"shadow/%1/%2/%3/%4"_qs.arg(rect.width())
                            .arg(rect.height())
                            .arg(shadow.blur)
                            .arg(shadow.color.rgba());
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        // As in CSS, the standard deviation is half the blur; erf() takes it times the square root
        // of 2.
        const double spread = shadow.blur / 2 * std::numbers::sqrt2;
        const auto profile = [&](int count, double length) {
            std::vector<double> values;
            for (int i = 0; i < count; ++i) {
                const double at = (i + 0.5) * step - shadow.blur;
                values.push_back((std::erf(at / spread) - std::erf((at - length) / spread)) / 2);
            }
            return values;
        };
        const auto across = profile(cells.width(), rect.width());
        const auto down = profile(cells.height(), rect.height());
        QImage image(cells, QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < cells.height(); ++y) {
            auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
            for (int x = 0; x < cells.width(); ++x)
                line[x] = qPremultiply(
                    withOpacity(shadow.color, across[std::size_t(x)] * down[std::size_t(y)])
                        .rgba());
        }
        pixmap = QPixmap::fromImage(image);
        QPixmapCache::insert(key, pixmap);
    }
    const SavedPainter saved(painter);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(QRectF(bounds.topLeft(), QSizeF(cells) * step), pixmap, pixmap.rect());
}
