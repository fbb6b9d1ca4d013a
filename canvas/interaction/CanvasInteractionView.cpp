#include "canvas/interaction/CanvasInteractionView.h"

#include "canvas/SafeZone.h"
#include "canvas/interaction/CanvasOverlay.h"
#include "platform/Workers.h"

#include <QAccessible>
#include <QCoroFuture>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// Milliseconds without movement after which a moved photo is resampled.
constexpr int restTime = 60;
// Largest coordinate that is converted to int, in logical pixels. For a larger one the whole view
// is repainted.
constexpr double farAway = 1e6;

// Pixels scrolled, positive upwards. For a wheel without pixelDelta(), one notch is 120 units of
// angleDelta() and counts as 10 pixels.
double scrolledPixels(const QWheelEvent* event)
{
    const QPointF delta = event->pixelDelta().isNull() ? QPointF(event->angleDelta()) / 12.0
                                                       : QPointF(event->pixelDelta());
    return delta.y() != 0 ? delta.y() : delta.x();
}

}    // namespace

CanvasInteractionView::CanvasInteractionView(QWidget* parent) : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    m_rest.setSingleShot(true);
    connect(&m_rest, &QTimer::timeout, this, &CanvasInteractionView::startResampling);
}

void CanvasInteractionView::setCanvasRect(const QRect& canvas, QSize pixels)
{
    m_canvas = canvas;
    m_interaction.setCanvasSize(QSizeF(pixels) / devicePixelRatioF());
    m_picture.setPixels(pixels);
    refresh();
    update();
}

void CanvasInteractionView::setItem(const std::optional<PublicationItem>& item, SocialFormat format)
{
    // Ends a drag when the format changes, because the canvas then has another shape.
    if (std::exchange(m_format, format) != format)
        m_interaction.setItem(std::nullopt);
    m_interaction.setFormat(format);
    const QString place = placeInWords(m_toldSelection);
    m_interaction.setItem(item);
    refresh();
    tellPlace(place);
}

// Tells screen readers where the selected layer is now, if it is the same one as `before`.
void CanvasInteractionView::tellPlace(const QString& before)
{
    const qsizetype child = layers().indexOf(m_toldSelection);
    if (child < 0 || !QAccessible::isActive() || placeInWords(m_toldSelection) == before)
        return;
    QAccessibleEvent event(this, QAccessible::DescriptionChanged);
    event.setChild(int(child));
    QAccessible::updateAccessibility(&event);
}

void CanvasInteractionView::setSelectedLayerID(QUuid id)
{
    const bool isOther = id != m_interaction.selectedLayerID() || id != m_toldSelection;
    m_interaction.setSelectedLayerID(id);
    m_toldSelection = id;
    updateMarks();
    updateCursor();
    if (const qsizetype child = layers().indexOf(id);
        isOther && child >= 0 && hasFocus() && QAccessible::isActive()) {
        QAccessibleEvent event(this, QAccessible::Focus);
        event.setChild(int(child));
        QAccessible::updateAccessibility(&event);
    }
}

void CanvasInteractionView::hideSelectedLayer()
{
    Q_EMIT hidingBegan();
    m_interaction.hideSelectedLayer();
    Q_EMIT hidingEnded();
}

void CanvasInteractionView::setPhoto(const QImage& photo)
{
    updatePicture(m_picture.setPhoto(photo));
    requestResampling(0);
}

void CanvasInteractionView::setSafeZone(bool shown)
{
    if (std::exchange(m_safeZone, shown) != shown)
        update(m_canvas);
}

void CanvasInteractionView::setLineColor(const QColor& color)
{
    m_lineColor = color;
    update();
}

bool CanvasInteractionView::isPhotoSharp() const
{
    return !m_resampling && !m_rest.isActive() && !m_picture.wantedPlace();
}

// Updates picture, marks and cursor to the present state of m_interaction.
void CanvasInteractionView::refresh()
{
    updatePicture(m_picture.setItem(m_interaction.item(), m_format));
    updateMarks();
    updateCursor();
    requestResampling(restTime);
}

void CanvasInteractionView::updatePicture(const QRect& pixels)
{
    if (pixels.isEmpty())
        return;
    const double ratio = devicePixelRatioF();
    const QRectF logical(pixels.x() / ratio, pixels.y() / ratio, pixels.width() / ratio,
                         pixels.height() / ratio);
    // Adds a pixel on each side: at a pixel ratio such as 1.25, the picture may begin inside a
    // logical pixel.
    update(logical.toAlignedRect().translated(m_canvas.topLeft()).adjusted(-1, -1, 1, 1));
}

CanvasInteractionView::Marks CanvasInteractionView::currentMarks() const
{
    Marks marks;
    const QUuid selected = m_interaction.markedLayerID();
    if (const auto rect = m_interaction.layerRect(selected)) {
        marks.selected = selected;
        marks.selection = *rect;
    }
    if (m_pointer && !m_interaction.dragMode()) {
        const CanvasHit hit = m_interaction.hitTest(*m_pointer);
        if (hit.part == CanvasHit::Part::layer && hit.layer != selected) {
            marks.hovered = hit.layer;
            marks.hover = *m_interaction.layerRect(hit.layer);
        }
    }
    marks.guides = m_interaction.activeSnapGuides();
    return marks;
}

QRegion CanvasInteractionView::regionOf(const Marks& marks) const
{
    QRegion region;
    const auto add = [&](const QRectF& part) {
        const bool bounded = std::abs(part.left()) < farAway && std::abs(part.top()) < farAway &&
                             std::abs(part.right()) < farAway && std::abs(part.bottom()) < farAway;
        region += bounded ? part.toAlignedRect().translated(m_canvas.topLeft()) : rect();
    };
    const QSizeF canvas = m_interaction.canvasSize();
    if (!marks.selected.isNull())
        add(CanvasOverlay::selectionExtent(marks.selection, canvas));
    if (!marks.hovered.isNull())
        add(marks.hover.normalized().adjusted(-2, -2, 2, 2));
    if (marks.guides.vertical)
        add(QRectF(canvas.width() / 2 - 3, -2, 6, canvas.height() + 4));
    if (marks.guides.horizontal)
        add(QRectF(-2, canvas.height() / 2 - 3, canvas.width() + 4, 6));
    return region;
}

void CanvasInteractionView::updateMarks()
{
    const Marks marks = currentMarks();
    if (marks == m_marks)
        return;
    update(regionOf(m_marks) + regionOf(marks));
    m_marks = marks;
}

void CanvasInteractionView::updateCursor()
{
    const auto shape = [this]() -> std::optional<Qt::CursorShape> {
        if (const auto mode = m_interaction.dragMode()) {
            switch (*mode) {
            case DragMode::move:
                return Qt::SizeAllCursor;
            case DragMode::resize:
                return Qt::SizeFDiagCursor;
            case DragMode::panImage:
                return Qt::ClosedHandCursor;
            }
        }
        switch (m_pointer ? m_interaction.hitTest(*m_pointer).part : CanvasHit::Part::nothing) {
        case CanvasHit::Part::nothing:
            return std::nullopt;
        case CanvasHit::Part::photo:
            return Qt::OpenHandCursor;
        case CanvasHit::Part::layer:
            return Qt::SizeAllCursor;
        case CanvasHit::Part::handle:
            return Qt::SizeFDiagCursor;
        }
        Q_UNREACHABLE();
    }();
    if (!shape)
        unsetCursor();
    else if (cursor().shape() != *shape)
        setCursor(*shape);
}

void CanvasInteractionView::requestResampling(int delay)
{
    const auto wanted = m_picture.wantedPlace();
    if (!wanted) {
        m_wanted.reset();
        return m_rest.stop();
    }
    if (delay > 0 && wanted == m_wanted)
        return;
    // The first photo is resampled without a delay.
    const bool moves = m_wanted || m_resamplings > 0;
    m_wanted = wanted;
    m_rest.start(moves ? delay : 0);
}

void CanvasInteractionView::startResampling()
{
    const auto place = m_picture.wantedPlace();
    if (!place || m_resampling)    // at its end, resample() calls this function again
        return;
    m_resampling = true;
    ++m_resamplings;
    resample(this, m_picture.photo(), *place);
}

QCoro::Task<> CanvasInteractionView::resample(QPointer<CanvasInteractionView> self, QImage photo,
                                              PhotoPlace place)
{
    QFuture<ResampledPhoto> work = runOnWorker([photo, place] {
        try {
            return resampledPhoto(photo, place);
        } catch (const std::exception&) {    // out of memory: the quick drawing remains visible
            return ResampledPhoto{photo.cacheKey(), place, {}};
        }
    });
    const ResampledPhoto result = co_await work;
    if (!self)
        co_return;
    self->m_resampling = false;
    self->updatePicture(self->m_picture.setResampled(result));
    if (!self->m_rest.isActive())
        self->startResampling();
}

void CanvasInteractionView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QImage& image = m_picture.image();
    if (image.isNull())
        return;
    CanvasOverlay overlay(painter, m_canvas, m_picture.pixels());
    painter.drawImage(overlay.picture().topLeft(), image);
    if (m_safeZone && m_format == SocialFormat::storyReel)
        overlay.drawSafeZone(safeZoneTop, safeZoneBottom);
    const QColor line = lineColor();
    if (!m_marks.hovered.isNull())
        overlay.drawHover(m_marks.hover, line);
    if (!m_marks.selected.isNull()) {
        overlay.drawSelection(m_marks.selection, nameOf(m_marks.selected), line,
                              palette().color(QPalette::Highlight));
        overlay.drawResizeHandle(CanvasInteraction::resizeHandleRect(m_marks.selection));
    }
    overlay.drawSnapGuides(m_marks.guides, line);
    if (m_ring)
        overlay.drawFocusRing(line);
}

QColor CanvasInteractionView::lineColor() const
{
    return m_lineColor.isValid() ? m_lineColor : palette().color(QPalette::Highlight);
}

void CanvasInteractionView::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange)
        update();
    QWidget::changeEvent(event);
}

void CanvasInteractionView::focusInEvent(QFocusEvent* event)
{
    const auto reason = event->reason();
    m_ring = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
             reason == Qt::ShortcutFocusReason;
    if (m_ring)
        update();
}

void CanvasInteractionView::focusOutEvent(QFocusEvent*)
{
    if (std::exchange(m_ring, false))
        update();
}

// Cancels a drag: a hidden widget does not get the mouse release.
void CanvasInteractionView::hideEvent(QHideEvent*)
{
    m_interaction.cancel();
    refresh();
}

void CanvasInteractionView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return event->ignore();
    setFocus(Qt::MouseFocusReason);
    if (std::exchange(m_ring, false))
        update();
    m_pointer = onCanvas(event->position());
    m_interaction.press(*m_pointer);
    refresh();
}

void CanvasInteractionView::mouseMoveEvent(QMouseEvent* event)
{
    const QPointF point = onCanvas(event->position());
    if (m_pointer == point)
        return;
    m_pointer = point;
    if (m_interaction.dragMode()) {
        if (event->buttons() & Qt::LeftButton)
            m_interaction.drag(point, event->modifiers());
        else
            m_interaction.release();    // the button was released where no event reached the view
        return refresh();
    }
    updateMarks();
    updateCursor();
}

void CanvasInteractionView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return event->ignore();
    m_interaction.release();
    refresh();
}

void CanvasInteractionView::mouseDoubleClickEvent(QMouseEvent* event)
{
    const CanvasHit hit = m_interaction.hitTest(onCanvas(event->position()));
    if (event->button() == Qt::LeftButton && hit.part == CanvasHit::Part::layer &&
        isText(hit.layer))
        Q_EMIT editRequested(hit.layer);
    else
        mousePressEvent(event);
}

void CanvasInteractionView::leaveEvent(QEvent*)
{
    m_pointer.reset();
    updateMarks();
}

void CanvasInteractionView::wheelEvent(QWheelEvent* event)
{
    if (!m_interaction.scroll(scrolledPixels(event)))
        return event->ignore();
    refresh();
}

void CanvasInteractionView::keyPressEvent(QKeyEvent* event)
{
    const bool plain = !(event->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier));
    const bool dragging = m_interaction.dragMode().has_value();
    const QUuid selected = m_interaction.selectedLayerID();
    const bool closes = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
                        event->key() == Qt::Key_Escape;
    // Ignores a repeated key: it may be the one that closed a dialog and is still held down.
    if (closes && event->isAutoRepeat())
        return event->ignore();
    switch (plain ? event->key() : 0) {
    case Qt::Key_Escape:
        if (dragging)
            m_interaction.cancel();
        else if (!selected.isNull())
            m_interaction.select(QUuid());
        else
            return event->ignore();
        break;
    case Qt::Key_Left:
        if (!dragging && m_interaction.onPrevious)
            m_interaction.onPrevious();
        break;
    case Qt::Key_Right:
        if (!dragging && m_interaction.onNext)
            m_interaction.onNext();
        break;
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
        hideSelectedLayer();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F2:
        if (!isText(selected))
            return event->ignore();
        if (!dragging)
            Q_EMIT editRequested(selected);
        break;
    default:
        return event->ignore();
    }
    refresh();
}

void CanvasInteractionView::selectLayer(QUuid layer)
{
    m_interaction.select(layer);
    refresh();
}

QList<QUuid> CanvasInteractionView::layers() const
{
    QList<QUuid> ids;
    if (const auto& item = m_interaction.item()) {
        for (auto layer = item->layers.crbegin(); layer != item->layers.crend(); ++layer)
            ids.append(layer->id);
        for (auto shape = item->shapeLayers.crbegin(); shape != item->shapeLayers.crend(); ++shape)
            ids.append(shape->id);
    }
    return ids;
}

bool CanvasInteractionView::isText(QUuid layer) const
{
    const auto& item = m_interaction.item();
    return item && std::ranges::find(item->layers, layer, &TextLayer::id) != item->layers.end();
}

QString CanvasInteractionView::nameOf(QUuid layer) const
{
    const auto& item = m_interaction.item();
    return item ? item->layerName(layer) : QString();
}

QString CanvasInteractionView::accessibleText(QUuid layer) const
{
    QString name = nameOf(layer);
    if (!isText(layer))
        return name;
    const auto& texts = m_interaction.item()->layers;
    return u"%1: %2"_s.arg(name, std::ranges::find(texts, layer, &TextLayer::id)->text);
}

QString CanvasInteractionView::placeInWords(QUuid layer) const
{
    const auto rect = m_interaction.layerRect(layer);
    const QSizeF canvas = m_interaction.canvasSize(), output = exportSize(m_format);
    if (!rect || canvas.isEmpty())
        return {};
    const double across = output.width() / canvas.width(), down = output.height() / canvas.height();
    return u"X %1, Y %2, ancho %3, alto %4"_s.arg(qRound(rect->x() * across))
        .arg(qRound(rect->y() * down))
        .arg(qRound(rect->width() * across))
        .arg(qRound(rect->height() * down));
}

QRect CanvasInteractionView::screenRect(QUuid layer) const
{
    const QRectF rect = m_interaction.layerRect(layer).value_or(QRectF()).intersected(
        QRectF(QPointF(-m_canvas.topLeft()), QSizeF(size())));
    if (rect.isEmpty())
        return {};
    const QRect aligned = rect.toAlignedRect().translated(m_canvas.topLeft());
    return {mapToGlobal(aligned.topLeft()), aligned.size()};
}
