#pragma once
#include "app/theme/WindowClass.h"

#include <QPixmap>
#include <QWidget>

class Badge;
class CanvasInteractionView;

// Shows the canvas as large as it fits, and the name of its format above it.
class StagePanel : public QWidget {
    Q_OBJECT
public:
    explicit StagePanel(QWidget* parent = nullptr);

    // The view covers the whole panel; the canvas within it is canvasRect().
    CanvasInteractionView* canvas() const { return m_view; }

    void setClass(WindowClass windowClass);
    void setFormat(const QString& title, const QString& ratio, QSize exportPixels);
    // Tells screen readers which image of the batch is shown; `current` counts from 0.
    void setPosition(int current, int count);
    // Sets whether the text above the canvas says that a template is previewed, not applied.
    void setPreviewed(bool previewed);
    QSize pictureSize() const { return m_pictureSize; }    // device pixels
    QRect canvasRect() const { return m_canvas; }
    QSize sizeHint() const override { return {640, 640}; }

Q_SIGNALS:
    void pictureSizeChanged(QSize pixels);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void fit();
    void paintGround(QPainter& painter) const;
    void nameCanvas();

    WindowClass m_class = WindowClass::roomy;
    QString m_title;
    QString m_position;
    bool m_isPreviewed = false;
    QSize m_exportPixels;
    QSize m_pictureSize;
    QRect m_canvas;      // logical pixels; encloses the picture
    QPixmap m_ground;    // everything painted below the picture; null when outdated
    Badge* m_ratio;
    CanvasInteractionView* m_view;
};
