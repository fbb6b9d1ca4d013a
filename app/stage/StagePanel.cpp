#include "app/stage/StagePanel.h"

#include "app/controls/Badge.h"
#include "app/theme/Painting.h"
#include "canvas/interaction/CanvasInteractionAccessible.h"
#include "canvas/interaction/CanvasInteractionView.h"

#include <QPaintEvent>

using namespace Qt::StringLiterals;

namespace {

struct StageMargins {
    int side, chipTop, top, bottom;    // pixels between the canvas and the edges of the stage
};
constexpr StageMargins compactMargins{12, 8, 36, 10}, roomyMargins{24, 14, 42, 12};

// A screen reader that is already running may ask for the canvas's interface at once, so the
// interface must be known before.
CanvasInteractionView* newCanvas(QWidget* parent)
{
    makeCanvasesAccessible();
    return new CanvasInteractionView(parent);
}

}    // namespace

StagePanel::StagePanel(QWidget* parent)
    : QWidget(parent), m_ratio(new Badge(QString(), this)), m_view(newCanvas(this))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    m_view->setLineColor(themeOf(this).accentLine);
}

void StagePanel::setFormat(const QString& title, const QString& ratio, QSize exportPixels)
{
    if (title == m_title && exportPixels == m_exportPixels)
        return;
    m_title = title;
    m_exportPixels = exportPixels;
    m_ratio->setText(ratio);
    m_ratio->resize(m_ratio->sizeHint());
    nameCanvas();
    fit();
    m_ground = {};
    update();
}

void StagePanel::setClass(WindowClass windowClass)
{
    m_class = windowClass;
    fit();
}

void StagePanel::setPosition(int current, int count)
{
    m_position = count > 0 ? u"imagen %1 de %2"_qs.arg(current + 1).arg(count) : QString();
    nameCanvas();
}

void StagePanel::setPreviewed(bool previewed)
{
    if (previewed == m_isPreviewed)
        return;
    m_isPreviewed = previewed;
    nameCanvas();
    m_ground = {};
    update();
}

void StagePanel::nameCanvas()
{
    QStringList parts{u"Lienzo"_qs, m_isPreviewed ? u"vista previa"_qs : QString(), m_title,
                      m_position};
    parts.removeAll(QString());
    m_view->setAccessibleName(parts.join(u", "_qs));
}

bool StagePanel::event(QEvent* event)
{
    // Qt sends one of these events when the window moves to a screen of another pixel ratio.
    if (event->type() == QEvent::ScreenChangeInternal || event->type() == QEvent::Show)
        fit();
    if (event->type() == QEvent::PaletteChange)
        m_view->setLineColor(themeOf(this).accentLine);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ScreenChangeInternal)
        m_ground = {};
    return QWidget::event(event);
}

void StagePanel::resizeEvent(QResizeEvent*)
{
    m_view->setGeometry(rect());
    fit();
}

void StagePanel::fit()
{
    const StageMargins& margins = m_class == WindowClass::compact ? compactMargins : roomyMargins;
    const QRect room = rect().adjusted(margins.side, margins.top, -margins.side, -margins.bottom);
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
    m_ratio->move(m_canvas.left(), m_canvas.top() - margins.top + margins.chipTop);
    m_view->setCanvasRect(m_canvas, wanted);
    m_ground = {};
    update();
    if (wanted != m_pictureSize) {
        m_pictureSize = wanted;
        Q_EMIT pictureSizeChanged(wanted);
    }
}

// Paints what m_ground caches: every step of a drag uncovers strips of the ground, and the wide
// shadow is slow to paint.
void StagePanel::paintGround(QPainter& painter) const
{
    const Theme& theme = themeOf(this);
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
              Qt::AlignLeft, m_isPreviewed ? Type::smallMedium : Type::small,
              m_isPreviewed ? theme.accentText : theme.text2,
              m_isPreviewed ? u"Vista previa de la plantilla, sin aplicar"_qs : m_title);
    painter.fillRect(m_canvas, theme.empty);
}

void StagePanel::paintEvent(QPaintEvent* event)
{
    // The picture covers the ground below it, but its outermost pixels may do so only partly.
    const bool hasPicture = !m_view->canvasBuffer().isNull();
    if (hasPicture && m_canvas.adjusted(1, 1, -1, -1).contains(event->rect()))
        return;
    const double ratio = devicePixelRatioF();
    const QSize pixels = (QSizeF(size()) * ratio).toSize();
    if (m_ground.size() != pixels) {
        m_ground = QPixmap(pixels);
        m_ground.setDevicePixelRatio(ratio);
        QPainter ground(&m_ground);
        paintGround(ground);
    }
    QPainter painter(this);
    painter.setClipRegion(hasPicture ? event->region() - m_canvas.adjusted(1, 1, -1, -1)
                                     : event->region());
    painter.drawPixmap(0, 0, m_ground);
}
