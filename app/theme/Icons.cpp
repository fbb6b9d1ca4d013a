#include "app/theme/Icons.h"

#include <QFile>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

using namespace Qt::StringLiterals;

namespace {

// The icon as SVG. QtSvg paints `currentColor` black, so the word is replaced by the colour,
// without its opacity, which the caller sets in the painter.
QByteArray drawingOf(Icon icon, int size, const QColor& color)
{
    QFile file(u":/icons/%1.svg"_qs.arg(row(icon).file));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray svg = file.readAll();
    svg.replace("currentColor", color.name(QColor::HexRgb).toLatin1());
    if (size < 20)
        svg.replace("stroke-width=\"1.5\"",
                    "stroke-width=\"" + QByteArray::number(1.5 * 20 / size, 'f', 3) + "\"");
    return svg;
}

}    // namespace

QPixmap iconPixmap(Icon icon, int size, const QColor& color, qreal ratio)
{
    const QString key =
        u"icon/%1/%2/%3/%4"_qs.arg(int(icon)).arg(size).arg(color.rgba()).arg(ratio);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    const int pixels = qCeil(size * ratio);
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer renderer(drawingOf(icon, size, color));
    QPainter painter(&image);
    painter.setOpacity(color.alphaF());
    renderer.render(&painter, QRectF(0, 0, size * ratio, size * ratio));
    painter.end();
    pixmap = QPixmap::fromImage(image);
    pixmap.setDevicePixelRatio(ratio);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

void paintIcon(QPainter& painter, Icon icon, const QRectF& box, int size, const QColor& color)
{
    if (icon == Icon::none)
        return;
    const qreal ratio = painter.device()->devicePixelRatioF();
    const auto snapped = [ratio](double at) { return std::round(at * ratio) / ratio; };
    painter.drawPixmap(
        QPointF(snapped(box.center().x() - size / 2.0), snapped(box.center().y() - size / 2.0)),
        iconPixmap(icon, size, color, ratio));
}

QIcon menuIcon(Icon icon)
{
    QIcon result;
    for (const qreal ratio : {1.0, 1.25, 1.5, 1.75, 2.0, 3.0})
        result.addPixmap(iconPixmap(icon, 20, Qt::black, ratio));
    return result;
}

QString inMenu(const QString& name)
{
    return QString(name).replace(u'&', QStringLiteral("&&"));
}
