#pragma once

#include "canvas/LayerFrame.h"
#include "model/PublicationItem.h"
#include "model/SocialFormat.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <functional>
#include <optional>

enum class DragMode { move, resize, panImage };

enum class LayerKind { text, shape };

// The layer that a gesture edits.
struct DragTarget {
    LayerKind kind = LayerKind::text;
    qsizetype index = 0;    // into the item's `layers` or `shapeLayers`
};

// The centre lines of the canvas that a layer has snapped to.
struct SnapGuides {
    bool vertical = false, horizontal = false;
    bool operator==(const SnapGuides&) const = default;
};

// The part of the canvas under the pointer.
struct CanvasHit {
    enum class Part { nothing, photo, layer, handle };
    Part part = Part::nothing;
    QUuid layer;    // set for Part::layer and Part::handle
    bool operator==(const CanvasHit&) const = default;
};

// Turns mouse and keyboard gestures on a canvas into edits of a working copy of the item, and
// passes every finished change to the callbacks. A callback may call setItem(). Points are in
// logical pixels from the canvas' top left corner, y downwards.
class CanvasInteraction {
public:
    // Called after every finished change, with the edited item.
    std::function<void(const PublicationItem&)> onCommit;
    std::function<void(QUuid)> onSelect;    // null: the selection was cleared
    std::function<void()> onPrevious, onNext;
    std::function<void()> onEditingBegan;    // called at the first movement of a drag
    std::function<void()> onEditingEnded;    // called once for each onEditingBegan

    // Side of the square resize handle, in logical pixels.
    static constexpr double resizeHandleSide = 26;

    void setFormat(SocialFormat format) { m_format = format; }
    void setCanvasSize(QSizeF size) { m_canvas = size; }
    QSizeF canvasSize() const { return m_canvas; }

    // Sets the item to edit. During a drag, an item equal to the one at the start of the drag is
    // ignored; any other ends the drag without calling onCommit.
    void setItem(const std::optional<PublicationItem>& item);
    const std::optional<PublicationItem>& item() const { return m_item; }
    void setSelectedLayerID(QUuid id) { m_selectedLayerID = id; }
    QUuid selectedLayerID() const { return m_selectedLayerID; }
    // The layer to show as selected. A press marks a layer at once, but onSelect is called only on
    // release.
    QUuid markedLayerID() const { return m_pendingSelection.value_or(m_selectedLayerID); }

    std::optional<DragMode> dragMode() const;
    bool isDraggingLayer() const { return m_gesture && m_gesture->target; }
    SnapGuides activeSnapGuides() const { return m_activeSnapGuides; }
    // The layer that the last gesture moved or resized. Null if it panned the photo, was cancelled
    // or was interrupted. Read it in onEditingEnded.
    QUuid movedLayer() const { return m_movedLayer; }

    // Starts a gesture. False when there is no item.
    bool press(QPointF point);
    void drag(QPointF point, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void release();
    // Restores the item as it was at the start of the gesture.
    void cancel();
    // Zooms the photo. `amount`: scrolled pixels, positive upwards. Returns false without zooming
    // if there is no item, a layer is selected or a gesture is under way.
    bool scroll(double amount);
    // Hides the selected layer if it is a text; removes it if it is a shape.
    void hideSelectedLayer();
    void select(QUuid layer);    // null: select nothing

    CanvasHit hitTest(QPointF point) const;
    // The layer's frame in logical pixels of the canvas; nothing for a hidden or missing layer.
    std::optional<QRectF> layerRect(QUuid layer) const;
    QRectF absoluteRect(const CodableRect& frame) const;
    static QRectF resizeHandleRect(const QRectF& layerRect);

private:
    struct Gesture {
        DragMode mode = DragMode::panImage;
        std::optional<DragTarget> target;    // empty: the photo is panned
        CodableRect startFrame;
        QPointF startPoint;
        ImagePlacement startPlacement;
        PublicationItem startItem;
        bool hasStartedEditing = false;
    };

    void beginDrag(DragTarget target, const CodableRect& frame, DragMode mode, QPointF point);
    void beginImagePan(QPointF point);
    void startEditingIfNeeded();
    void endGesture();

    std::optional<DragTarget> find(QUuid layer) const;
    QUuid idOf(DragTarget target) const;
    const CodableRect& frameOf(DragTarget target) const;
    std::optional<DragTarget> layerAt(QPointF point) const;
    bool isShapeLine(DragTarget target) const;
    SmallestFrame smallestFrame(DragTarget target) const;
    CodableRect proportionalResize(CodableRect frame, DragTarget target) const;
    CodableRect snapped(CodableRect frame);
    static void apply(const CodableRect& frame, DragTarget target, PublicationItem& item);

    void deferSelectionChange(QUuid layer) { m_pendingSelection = layer; }
    void flushPendingSelectionChange();
    void commit();

    std::optional<PublicationItem> m_item;
    QUuid m_selectedLayerID;
    SocialFormat m_format = SocialFormat::carouselPortrait;
    QSizeF m_canvas;    // size in logical pixels
    std::optional<Gesture> m_gesture;
    SnapGuides m_activeSnapGuides;
    std::optional<QUuid> m_pendingSelection;    // layer to pass to onSelect on release
    QUuid m_movedLayer;
};
