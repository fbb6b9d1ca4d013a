#pragma once

#include "canvas/interaction/CanvasInteraction.h"
#include "canvas/interaction/CanvasPicture.h"

#include <QCoroTask>
#include <QPointer>
#include <QRegion>
#include <QTimer>
#include <QWidget>

// The widget that shows the current item for editing. It covers the canvas and a margin around it,
// which handles may reach into and through which the widgets below stay visible.
class CanvasInteractionView : public QWidget {
    Q_OBJECT
public:
    explicit CanvasInteractionView(QWidget* parent = nullptr);

    // Set its callbacks to receive the edits.
    CanvasInteraction& interaction() { return m_interaction; }
    const CanvasInteraction& interaction() const { return m_interaction; }

    // `canvas`: its place in logical pixels of the view; `pixels`: its size in screen pixels.
    void setCanvasRect(const QRect& canvas, QSize pixels);
    QRect canvasRect() const { return m_canvas; }

    void setItem(const std::optional<PublicationItem>& item, SocialFormat format);
    void setSelectedLayerID(QUuid id);
    // Sets the decoded photo, at any level, of the item set last.
    void setPhoto(const QImage& photo);
    // Shows bands over the parts of a story that the network's buttons may cover; other formats
    // have none.
    void setSafeZone(bool shown);
    // Sets the colour of frames and guides; by default the palette's highlight.
    void setLineColor(const QColor& color);

    // The picture on the canvas in screen pixels, without frames, guides and bands.
    const QImage& canvasBuffer() { return m_picture.image(); }
    // Whether the photo in canvasBuffer() is as sharp as it can be.
    bool isPhotoSharp() const;
    // Number of times the photo was resampled.
    int resamplings() const { return m_resamplings; }

    // The layers that a screen reader finds, topmost first; hidden texts included.
    QList<QUuid> layers() const;
    QString accessibleText(QUuid layer) const;
    QRect screenRect(QUuid layer) const;    // empty when hidden
    void selectLayer(QUuid layer);
    // Hides the selected layer as the Delete key does.
    void hideSelectedLayer();

    QSize sizeHint() const override { return {640, 640}; }

Q_SIGNALS:
    void editRequested(QUuid text);
    // Emitted before and after the callbacks that hide or remove a layer, so that all of them count
    // as one operation.
    void hidingBegan();
    void hidingEnded();

protected:
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    // The marks drawn over the picture.
    struct Marks {
        QUuid selected, hovered;
        QRectF selection, hover;    // logical pixels from the canvas' corner
        SnapGuides guides;
        bool operator==(const Marks&) const = default;
    };

    void refresh();
    void updatePicture(const QRect& pixels);
    Marks currentMarks() const;
    QRegion regionOf(const Marks& marks) const;
    void updateMarks();
    void updateCursor();
    QPointF onCanvas(const QPointF& position) const { return position - m_canvas.topLeft(); }
    bool isText(QUuid layer) const;
    QString nameOf(QUuid layer) const;
    QColor lineColor() const;
    void requestResampling(int delay);
    void startResampling();
    static QCoro::Task<> resample(QPointer<CanvasInteractionView> self, QImage photo,
                                  PhotoPlace place);

    CanvasInteraction m_interaction;
    CanvasPicture m_picture;
    SocialFormat m_format = SocialFormat::carouselPortrait;
    QRect m_canvas;
    QColor m_lineColor;
    bool m_safeZone = false;
    bool m_ring = false;                 // drawn when the focus came by keyboard
    std::optional<QPointF> m_pointer;    // last position over the view, from the canvas' corner
    Marks m_marks;
    QUuid m_toldSelection;    // the selection last reported to screen readers
    std::optional<PhotoPlace> m_wanted;
    QTimer m_rest;    // on timeout, resamples the photo
    bool m_resampling = false;
    int m_resamplings = 0;
};
