#pragma once

#include "canvas/interaction/CanvasInteraction.h"
#include "canvas/interaction/CanvasPicture.h"

#include <QCoroTask>
#include <QPointer>
#include <QRegion>
#include <QTimer>
#include <QWidget>

// The surface on which the current item is seen and edited. It covers the canvas and the room
// around it, where handles may reach; what lies below shows through there.
class CanvasInteractionView : public QWidget {
    Q_OBJECT
public:
    explicit CanvasInteractionView(QWidget* parent = nullptr);

    // Its callbacks are for whoever applies the edits.
    CanvasInteraction& interaction() { return m_interaction; }
    const CanvasInteraction& interaction() const { return m_interaction; }

    // Where the canvas lies, in logical pixels of the view, and how many of the screen it holds.
    void setCanvasRect(const QRect& canvas, QSize pixels);
    QRect canvasRect() const { return m_canvas; }

    void setItem(const std::optional<PublicationItem>& item, SocialFormat format);
    void setSelectedLayerID(QUuid id);
    // The photo of the item that was set last, decoded at any level.
    void setPhoto(const QImage& photo);
    // Bands over what a story may lose; shown for that format only.
    void setSafeZone(bool shown);
    // Of frames and guides; the highlight of the palette until one is set.
    void setLineColor(const QColor& color);

    // The picture on the canvas in pixels of the screen, without anything that is only shown.
    const QImage& canvasBuffer() { return m_picture.image(); }
    // The photo in it is as sharp as it can be.
    bool isSettled() const;
    // How often the photo was resampled.
    int resamplings() const { return m_resamplings; }

    // What a screen reader finds on the canvas, topmost first; hidden texts included.
    QList<QUuid> layers() const;
    QString accessibleText(QUuid layer) const;
    QRect screenRect(QUuid layer) const;    // empty when hidden
    void selectLayer(QUuid layer);
    // As the key does.
    void hideSelectedLayer();

    QSize sizeHint() const override { return {640, 640}; }

Q_SIGNALS:
    void editRequested(QUuid text);
    // Around the callbacks of hiding or removing a layer, which are one operation.
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
    // What is drawn over the picture.
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
    bool m_ring = false;                 // the keyboard gave the focus
    std::optional<QPointF> m_pointer;    // where it hovers or drags
    Marks m_marks;
    QUuid m_toldSelection;    // to a screen reader
    std::optional<PhotoPlace> m_wanted;
    QTimer m_rest;    // until the photo is resampled
    bool m_resampling = false;
    int m_resamplings = 0;
};
