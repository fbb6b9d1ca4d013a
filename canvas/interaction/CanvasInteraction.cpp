#include "canvas/interaction/CanvasInteraction.h"

#include "canvas/ImagePlacementGeometry.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double snapDistance = 0.018;
constexpr double smallestZoom = 1, largestZoom = 3, zoomPerPixel = 0.01;

// Gives `highest` if the limits cross, and `lowest` for NaN.
double clamp(double value, double lowest, double highest)
{
    return std::min(value > lowest ? value : lowest, highest);
}

template <typename Callback, typename... Values>
void tell(const Callback& callback, const Values&... values)
{
    if (callback)
        callback(values...);
}

}    // namespace

// Ignores payments: they may be recorded during a drag and do not show on the canvas.
static bool isSameButForPayments(PublicationItem item, const PublicationItem& other)
{
    item.paidRenderFingerprints = other.paidRenderFingerprints;
    return item == other;
}

std::optional<DragMode> CanvasInteraction::dragMode() const
{
    return m_gesture ? std::optional(m_gesture->mode) : std::nullopt;
}

void CanvasInteraction::setItem(const std::optional<PublicationItem>& item)
{
    if (m_gesture && item && isSameButForPayments(*item, m_gesture->startItem))
        return;
    m_item = item;
    if (m_gesture) {
        m_pendingSelection.reset();
        endGesture();
    }
}

bool CanvasInteraction::press(QPointF point)
{
    endGesture();
    if (!m_item)
        return false;
    const CanvasHit hit = hitTest(point);
    switch (hit.part) {
    case CanvasHit::Part::handle: {
        const DragTarget target = *find(hit.layer);
        beginDrag(target, frameOf(target), DragMode::resize, point);
        break;
    }
    case CanvasHit::Part::layer: {
        const DragTarget target = *find(hit.layer);
        deferSelectionChange(hit.layer);
        beginDrag(target, frameOf(target), DragMode::move, point);
        break;
    }
    case CanvasHit::Part::photo:
        deferSelectionChange(QUuid());
        beginImagePan(point);
        break;
    case CanvasHit::Part::nothing:
        deferSelectionChange(QUuid());
        break;
    }
    return true;
}

void CanvasInteraction::beginDrag(DragTarget target, const CodableRect& frame, DragMode mode,
                                  QPointF point)
{
    m_gesture = Gesture{.mode = mode,
                        .target = target,
                        .startFrame = frame,
                        .startPoint = point,
                        .startPlacement = m_item->placement,
                        .startItem = *m_item,
                        .hasStartedEditing = false};
    m_movedLayer = idOf(target);
}

void CanvasInteraction::beginImagePan(QPointF point)
{
    m_gesture = Gesture{.mode = DragMode::panImage,
                        .target = std::nullopt,
                        .startFrame = {},
                        .startPoint = point,
                        .startPlacement = m_item->placement,
                        .startItem = *m_item,
                        .hasStartedEditing = false};
    m_movedLayer = QUuid();
}

void CanvasInteraction::startEditingIfNeeded()
{
    if (std::exchange(m_gesture->hasStartedEditing, true))
        return;
    tell(onEditingBegan);
}

void CanvasInteraction::drag(QPointF point, Qt::KeyboardModifiers modifiers)
{
    if (!m_gesture || !m_item)
        return;
    startEditingIfNeeded();
    if (!m_gesture)    // onEditingBegan has set another item, which ends the gesture
        return;
    const double dx = (point.x() - m_gesture->startPoint.x()) / std::max(m_canvas.width(), 1.0);
    const double dy = (point.y() - m_gesture->startPoint.y()) / std::max(m_canvas.height(), 1.0);
    switch (m_gesture->mode) {
    case DragMode::move:
        apply(snapped(LayerFrame::moved(m_gesture->startFrame, dx, dy)), *m_gesture->target,
              *m_item);
        break;
    case DragMode::resize: {
        CodableRect frame =
            LayerFrame::resized(m_gesture->startFrame, dx, dy, smallestFrame(*m_gesture->target));
        if (modifiers & Qt::ShiftModifier)
            frame = proportionalResize(frame, *m_gesture->target);
        apply(snapped(frame), *m_gesture->target, *m_item);
        break;
    }
    case DragMode::panImage: {
        ImagePlacement placement = m_gesture->startPlacement;
        placement.offset.x += dx;
        placement.offset.y += dy;
        m_item->placement = ImagePlacementGeometry::moved(m_gesture->startPlacement, placement,
                                                          m_item->image.size, m_format);
        break;
    }
    }
}

SmallestFrame CanvasInteraction::smallestFrame(DragTarget target) const
{
    return target.kind == LayerKind::shape ? smallestFrameOf(m_item->shapeLayers[target.index].kind)
                                           : SmallestFrame();
}

CodableRect CanvasInteraction::proportionalResize(CodableRect frame, DragTarget target) const
{
    if (isShapeLine(target))
        return frame;
    const CodableRect& start = m_gesture->startFrame;
    const double ratio = start.width / std::max(start.height, 0.001);
    const double tallest = LayerFrame::maximumOverflowSize(frame.y);
    frame.height = frame.width / ratio;
    if (frame.height > tallest) {
        frame.height = tallest;
        frame.width = tallest * ratio;
    }
    return frame;
}

CodableRect CanvasInteraction::snapped(CodableRect frame)
{
    m_activeSnapGuides = {
        .vertical = std::abs(frame.x + frame.width / 2 - 0.5) <= snapDistance,
        .horizontal = std::abs(frame.y + frame.height / 2 - 0.5) <= snapDistance,
    };
    if (m_activeSnapGuides.vertical)
        frame.x = clamp(0.5 - frame.width / 2, LayerFrame::minimumVisibleOrigin(frame.width),
                        LayerFrame::maximumVisibleOrigin(frame.width));
    if (m_activeSnapGuides.horizontal)
        frame.y = clamp(0.5 - frame.height / 2, LayerFrame::minimumVisibleOrigin(frame.height),
                        LayerFrame::maximumVisibleOrigin(frame.height));
    return frame;
}

void CanvasInteraction::apply(const CodableRect& frame, DragTarget target, PublicationItem& item)
{
    if (target.kind == LayerKind::text)
        item.layers[target.index].frame = frame;
    else
        item.shapeLayers[target.index].frame = frame;
}

// Resets m_gesture before calling the callbacks, so that an item set by one of them does not count
// as an interruption.
void CanvasInteraction::release()
{
    const bool hadGesture = m_gesture.has_value();
    const bool hasStartedEditing = hadGesture && m_gesture->hasStartedEditing;
    m_gesture.reset();
    m_activeSnapGuides = {};
    if (hadGesture)
        commit();
    flushPendingSelectionChange();
    if (hasStartedEditing)
        tell(onEditingEnded);
}

void CanvasInteraction::cancel()
{
    if (!m_gesture)
        return;
    const bool hasStartedEditing = m_gesture->hasStartedEditing;
    m_item = m_gesture->startItem;
    m_gesture.reset();
    m_activeSnapGuides = {};
    m_pendingSelection.reset();
    m_movedLayer = QUuid();
    if (!hasStartedEditing)
        return;
    commit();
    tell(onEditingEnded);
}

void CanvasInteraction::endGesture()
{
    const bool hasStartedEditing = m_gesture && m_gesture->hasStartedEditing;
    m_gesture.reset();
    m_activeSnapGuides = {};
    m_movedLayer = QUuid();
    if (hasStartedEditing)
        tell(onEditingEnded);
}

void CanvasInteraction::flushPendingSelectionChange()
{
    if (!m_pendingSelection)
        return;
    const QUuid layer = *std::exchange(m_pendingSelection, std::nullopt);
    m_selectedLayerID = layer;
    tell(onSelect, layer);
}

void CanvasInteraction::commit()
{
    if (!m_item)
        return;
    const PublicationItem edited = *m_item;    // onCommit may replace m_item
    tell(onCommit, edited);
}

bool CanvasInteraction::scroll(double amount)
{
    if (!m_item || m_gesture || find(m_selectedLayerID))
        return false;
    ImagePlacement placement = m_item->placement;
    placement.zoom = clamp(placement.zoom + amount * zoomPerPixel, smallestZoom, largestZoom);
    m_item->placement =
        ImagePlacementGeometry::moved(m_item->placement, placement, m_item->image.size, m_format);
    commit();
    return true;
}

void CanvasInteraction::hideSelectedLayer()
{
    const auto target = find(m_selectedLayerID);
    if (!target || m_gesture)
        return;
    if (target->kind == LayerKind::shape)
        m_item->shapeLayers.removeAt(target->index);
    else
        m_item->layers[target->index].isVisible = false;
    const PublicationItem edited = *m_item;
    m_selectedLayerID = QUuid();
    tell(onSelect, QUuid());
    tell(onCommit, edited);
}

void CanvasInteraction::select(QUuid layer)
{
    if (m_selectedLayerID == layer)
        return;
    m_selectedLayerID = layer;
    tell(onSelect, layer);
}

std::optional<DragTarget> CanvasInteraction::find(QUuid layer) const
{
    if (!m_item || layer.isNull())
        return std::nullopt;
    const auto indexIn = [layer](const auto& layers) {
        const auto found = std::ranges::find(layers, layer, [](const auto& l) { return l.id; });
        return found == layers.end() ? qsizetype(-1) : qsizetype(found - layers.begin());
    };
    if (const qsizetype index = indexIn(m_item->layers); index >= 0)
        return DragTarget{LayerKind::text, index};
    if (const qsizetype index = indexIn(m_item->shapeLayers); index >= 0)
        return DragTarget{LayerKind::shape, index};
    return std::nullopt;
}

QUuid CanvasInteraction::idOf(DragTarget target) const
{
    return target.kind == LayerKind::text ? m_item->layers[target.index].id
                                          : m_item->shapeLayers[target.index].id;
}

const CodableRect& CanvasInteraction::frameOf(DragTarget target) const
{
    return target.kind == LayerKind::text ? m_item->layers[target.index].frame
                                          : m_item->shapeLayers[target.index].frame;
}

bool CanvasInteraction::isShapeLine(DragTarget target) const
{
    return target.kind == LayerKind::shape &&
           m_item->shapeLayers[target.index].kind == ShapeKind::line;
}

// Searches from the top: all texts lie above all shapes.
std::optional<DragTarget> CanvasInteraction::layerAt(QPointF point) const
{
    for (qsizetype i = m_item->layers.size() - 1; i >= 0; --i) {
        const TextLayer& layer = m_item->layers[i];
        if (layer.isVisible && absoluteRect(layer.frame).contains(point))
            return DragTarget{LayerKind::text, i};
    }
    for (qsizetype i = m_item->shapeLayers.size() - 1; i >= 0; --i) {
        if (absoluteRect(m_item->shapeLayers[i].frame).contains(point))
            return DragTarget{LayerKind::shape, i};
    }
    return std::nullopt;
}

CanvasHit CanvasInteraction::hitTest(QPointF point) const
{
    if (!m_item)
        return {};
    const auto selected = layerRect(m_selectedLayerID);
    if (selected && resizeHandleRect(*selected).contains(point))
        return {CanvasHit::Part::handle, m_selectedLayerID};
    if (!QRectF(QPointF(), m_canvas).contains(point))
        return {};
    if (const auto target = layerAt(point))
        return {CanvasHit::Part::layer, idOf(*target)};
    return {CanvasHit::Part::photo, {}};
}

std::optional<QRectF> CanvasInteraction::layerRect(QUuid layer) const
{
    const auto target = find(layer);
    if (!target || (target->kind == LayerKind::text && !m_item->layers[target->index].isVisible))
        return std::nullopt;
    return absoluteRect(frameOf(*target));
}

QRectF CanvasInteraction::absoluteRect(const CodableRect& frame) const
{
    return {frame.x * m_canvas.width(), frame.y * m_canvas.height(), frame.width * m_canvas.width(),
            frame.height * m_canvas.height()};
}

QRectF CanvasInteraction::resizeHandleRect(const QRectF& layerRect)
{
    const double half = resizeHandleSide / 2;
    return {layerRect.x() + layerRect.width() - half, layerRect.y() + layerRect.height() - half,
            resizeHandleSide, resizeHandleSide};
}
