#pragma once
#include <QImage>
#include <QWidget>

class Badge;

// The photograph, as large as fits, with its format above. The picture is shown pixel by pixel of
// the screen.
class StagePanel : public QWidget {
    Q_OBJECT
public:
    explicit StagePanel(QWidget* parent = nullptr);

    void setFormat(const QString& title, const QString& ratio, QSize exportPixels);
    // For screen readers; `current` counts from 0.
    void setPosition(int current, int count);
    QSize pictureSize() const { return m_pictureSize; }    // in pixels of the screen
    // Until a picture of the wanted size comes, the last one of the same shape is shown scaled.
    void setPicture(const QImage& picture);
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
    void nameCanvas();

    QString m_title;
    QString m_position;
    QSize m_exportPixels;
    QSize m_pictureSize;
    QRect m_canvas;    // logical pixels, all around the picture
    QImage m_picture;
    Badge* m_ratio;
};
