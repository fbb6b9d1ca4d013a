#include "app/StagePanel.h"

#include "app/controls/Badge.h"
#include "app/controls/Painting.h"

#include <QEvent>

using namespace Qt::StringLiterals;

namespace {

constexpr int canvasSide = 24, chipTop = 14, canvasTop = 42, canvasBottom = 12;

// Where the picture begins, moved to the next whole pixel of the screen: with a ratio such as 1.25
// a widget may begin inside one.
QPointF wholePixel(const QPainter& painter, const QPointF& point)
{
    const QTransform toDevice = painter.deviceTransform();
    const QPointF device = toDevice.map(point);
    return toDevice.inverted().map(QPointF(std::round(device.x()), std::round(device.y())));
}

}    // namespace

StagePanel::StagePanel(QWidget* parent) : QWidget(parent), m_ratio(new Badge(QString(), this))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void StagePanel::setFormat(const QString& title, const QString& ratio, QSize exportPixels)
{
    m_title = title;
    m_exportPixels = exportPixels;
    m_ratio->setText(ratio);
    m_ratio->resize(m_ratio->sizeHint());
    nameCanvas();
    fit();
    update();
}

void StagePanel::setPosition(int current, int count)
{
    m_position = count > 0 ? u"imagen %1 de %2"_qs.arg(current + 1).arg(count) : QString();
    nameCanvas();
}

void StagePanel::nameCanvas()
{
    QStringList parts{u"Lienzo"_qs, m_title, m_position};
    parts.removeAll(QString());
    setAccessibleName(parts.join(u", "_qs));
}

void StagePanel::setPicture(const QImage& picture)
{
    m_picture = picture;
    update(m_canvas);
}

bool StagePanel::event(QEvent* event)
{
    // A move to a screen of another pixel ratio arrives as one of these.
    if (event->type() == QEvent::ScreenChangeInternal || event->type() == QEvent::Show)
        fit();
    return QWidget::event(event);
}

void StagePanel::resizeEvent(QResizeEvent*)
{
    fit();
}

void StagePanel::fit()
{
    const QRect room = rect().adjusted(canvasSide, canvasTop, -canvasSide, -canvasBottom);
    if (m_exportPixels.isEmpty() || room.isEmpty())
        return;
    const double ratio = devicePixelRatioF();
    const QSizeF pixels = QSizeF(room.size()) * ratio;
    const QSizeF fitted = QSizeF(m_exportPixels).scaled(pixels, Qt::KeepAspectRatio);
    const QSize wanted(std::max(1, int(fitted.width() + 0.01)),
                       std::max(1, int(fitted.height() + 0.01)));
    const QSize logical(qCeil(wanted.width() / ratio), qCeil(wanted.height() / ratio));
    m_canvas = QRect(QPoint(room.left() + (room.width() - logical.width()) / 2,
                            room.top() + (room.height() - logical.height()) / 2),
                     logical);
    m_ratio->move(m_canvas.left(), m_canvas.top() - canvasTop + chipTop);
    update();
    if (wanted != m_pictureSize) {
        m_pictureSize = wanted;
        Q_EMIT pictureSizeChanged(wanted);
    }
}

// But for what rounding may do.
static bool hasShapeOf(QSize picture, QSize other)
{
    return qAbs(qint64(picture.width()) * other.height() -
                qint64(picture.height()) * other.width()) <=
           2 * std::max(picture.width() + other.width(), picture.height() + other.height());
}

void StagePanel::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.fillRect(rect(), theme.bg);
    if (m_canvas.isEmpty())
        return;
    paintShadow(painter, m_canvas, {.color = theme.shadow});
    const QRectF header(m_canvas.left(), m_ratio->y(), m_canvas.width(), m_ratio->height());
    const QString size = u"%1 × %2 px"_qs.arg(m_exportPixels.width()).arg(m_exportPixels.height());
    paintText(painter, header, Qt::AlignRight, Type::small, theme.text3, size);
    const double title = header.left() + m_ratio->width() + Space::small;
    paintText(painter,
              QRectF(title, header.top(),
                     header.right() - textWidth(Type::small, size) - Space::medium - title,
                     header.height()),
              Qt::AlignLeft, Type::small, theme.text2, m_title);
    if (m_picture.isNull()) {
        painter.fillRect(m_canvas, theme.empty);
    } else if (m_picture.size() == m_pictureSize) {
        const double ratio = painter.device()->devicePixelRatioF();
        QImage sharp = m_picture;
        sharp.setDevicePixelRatio(ratio);
        painter.drawImage(wholePixel(painter, m_canvas.topLeft()), sharp);
    } else if (hasShapeOf(m_picture.size(), m_pictureSize)) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(m_canvas, m_picture);
    } else {
        painter.fillRect(m_canvas,
                         theme.empty);    // a picture in another format, out of shape here
    }
}
