#pragma once

#include "model/PublicationItem.h"
#include "model/SocialFormat.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <functional>
#include <optional>

enum class DragMode { move, resize, panImage };

enum class LayerKind { text, shape };

// A layer of the item that a gesture acts on.
struct DragTarget {
    LayerKind kind = LayerKind::text;
    qsizetype index = 0;    // into `layers` or `shapeLayers`
};

// The centre lines that a layer has snapped to.
struct SnapGuides {
    bool vertical = false, horizontal = false;
    bool operator==(const SnapGuides&) const = default;
};

// What lies under the pointer.
struct CanvasHit {
    enum class Part { nothing, photo, layer, handle };
    Part part = Part::nothing;
    QUuid layer;    // of a layer or its handle
    bool operator==(const CanvasHit&) const = default;
};

// The gestures on a canvas: turns presses, drags and keys into edits of a working copy of the item,
// and hands every finished change to its callbacks. Points are in logical pixels from the canvas'
// top left corner, y downwards; a callback may give the canvas another item.
class CanvasInteraction {
public:
    // After every finished change, with the item as edited.
    std::function<void(const PublicationItem&)> onCommit;
    std::function<void(QUuid)> onSelect;    // null: nothing is selected any more
    std::function<void()> onPrevious, onNext;
    std::function<void()> onEditingBegan;    // at the first movement of a drag
    std::function<void()> onEditingEnded;    // once for each onEditingBegan

    // The part of the canvas, of its width or height, that a layer keeps on the canvas.
    static constexpr double minimumVisibleLayerFraction = 0.08;
    static constexpr double resizeHandleSide = 26;

    void setFormat(SocialFormat format) { m_format = format; }
    void setCanvasSize(QSizeF size) { m_canvas = size; }
    QSizeF canvasSize() const { return m_canvas; }

    // Shows an item. During a drag one that is still as the drag found it changes nothing; any
    // other ends the drag without a commit.
    void setItem(const std::optional<PublicationItem>& item);
    const std::optional<PublicationItem>& item() const { return m_item; }
    void setSelectedLayerID(QUuid id) { m_selectedLayerID = id; }
    QUuid selectedLayerID() const { return m_selectedLayerID; }
    // The one to mark as selected: a press marks at once what is reported on release.
    QUuid markedLayerID() const { return m_pendingSelection.value_or(m_selectedLayerID); }

    std::optional<DragMode> dragMode() const;
    bool isDraggingLayer() const { return m_gesture && m_gesture->target; }
    SnapGuides activeSnapGuides() const { return m_activeSnapGuides; }
    // The layer that the last gesture moved; null for the photo, and where nothing was left moved.
    // Of use while onEditingEnded runs.
    QUuid movedLayer() const { return m_movedLayer; }

    // False when there is no item.
    bool press(QPointF point);
    void drag(QPointF point, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void release();
    // Puts the item back to how the gesture found it.
    void cancel();
    // `amount`: the wheel's pixels, up is positive. True when it was for the canvas.
    bool scroll(double amount);
    void hideSelectedLayer();
    void select(QUuid layer);    // null: nothing

    CanvasHit hitTest(QPointF point) const;
    // The layer's frame as shown; nothing for one that is hidden or not there.
    std::optional<QRectF> layerRect(QUuid layer) const;
    QRectF absoluteRect(const CodableRect& frame) const;
    static QRectF resizeHandleRect(const QRectF& layerRect);

    static double minimumVisibleOrigin(double size);
    static double maximumVisibleOrigin(double size);
    static double maximumOverflowSize(double origin);

private:
    struct Gesture {
        DragMode mode = DragMode::panImage;
        std::optional<DragTarget> target;    // none: the photo
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
    CodableRect moved(double dx, double dy) const;
    CodableRect resized(double dx, double dy) const;
    CodableRect proportionalResize(CodableRect frame, DragTarget target) const;
    CodableRect snapped(CodableRect frame);
    static void apply(const CodableRect& frame, DragTarget target, PublicationItem& item);

    void deferSelectionChange(QUuid layer) { m_pendingSelection = layer; }
    void flushPendingSelectionChange();
    void commit();

    std::optional<PublicationItem> m_item;
    QUuid m_selectedLayerID;
    SocialFormat m_format = SocialFormat::carouselPortrait;
    QSizeF m_canvas;    // as it is shown
    std::optional<Gesture> m_gesture;
    SnapGuides m_activeSnapGuides;
    std::optional<QUuid> m_pendingSelection;    // told on release
    QUuid m_movedLayer;
};
