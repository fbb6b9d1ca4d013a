#pragma once

#include "canvas/interaction/CanvasInteraction.h"
#include "canvas/interaction/CanvasPicture.h"

#include <QCoroTask>
#include <QPointer>
#include <QRegion>
#include <QTimer>
#include <QWidget>

// The widget that shows the current item for editing. It covers the canvas and a transparent margin
// around it, into which resize handles may reach.
class CanvasInteractionView : public QWidget {
    Q_OBJECT
public:
    explicit CanvasInteractionView(QWidget* parent = nullptr);

    // Turns mouse and keyboard input into edits; set its callbacks to receive them.
    CanvasInteraction& interaction() { return m_interaction; }
    const CanvasInteraction& interaction() const { return m_interaction; }

    // `canvas`: the rectangle of the canvas, in logical pixels of this widget. `pixels`: the size
    // of the canvas in screen pixels.
    void setCanvasRect(const QRect& canvas, QSize pixels);
    QRect canvasRect() const { return m_canvas; }

    void setItem(const std::optional<PublicationItem>& item, SocialFormat format);
    void setSelectedLayerID(QUuid id);
    // Sets the photo of the item last passed to setItem(), decoded at any PhotoLevel.
    void setPhoto(const QImage& photo);
    // Shows or hides bands over the parts of a story that the social network's own buttons may
    // cover. Other formats have no bands.
    void setSafeZone(bool shown);
    // Sets the colour of frames and guides; by default the palette's highlight.
    void setLineColor(const QColor& color);

    // The picture on the canvas in screen pixels, without frames, guides and bands.
    const QImage& canvasBuffer() { return m_picture.image(); }
    // Whether canvasBuffer() shows the resampled photo, not a quick drawing; also true without a
    // photo.
    bool isPhotoSharp() const;
    // Number of times the photo was resampled.
    int resamplings() const { return m_resamplings; }

    // The layers that a screen reader finds, topmost first; hidden texts included.
    QList<QUuid> layers() const;
    QString accessibleText(QUuid layer) const;
    QString placeInWords(QUuid layer) const;    // in pixels of the exported picture
    QRect screenRect(QUuid layer) const;        // global; empty for a hidden layer
    void selectLayer(QUuid layer);
    // Hides the selected text or removes the selected shape, as the Delete key does.
    void hideSelectedLayer();

    QSize sizeHint() const override { return {640, 640}; }

Q_SIGNALS:
    void editRequested(QUuid text);
    // Emitted before and after the calls of onSelect and onCommit with which a layer is hidden or
    // removed, so that a receiver can treat all of them as one operation.
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
        QRectF selection, hover;    // logical pixels from the canvas' top left corner
        SnapGuides guides;
        bool operator==(const Marks&) const = default;
    };

    void refresh();
    void tellPlace(const QString& before);
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
    bool m_ring = false;                 // focus ring, drawn when the focus came by keyboard
    std::optional<QPointF> m_pointer;    // last position over the view, from the canvas' corner
    Marks m_marks;
    QUuid m_toldSelection;    // the selection last reported to screen readers
    std::optional<PhotoPlace> m_wanted;
    QTimer m_rest;    // waits until the photo no longer moves, then has it resampled
    bool m_resampling = false;
    int m_resamplings = 0;
};
