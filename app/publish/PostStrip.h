#pragma once
#include "app/publish/PublishShown.h"

#include <QHash>
#include <QImage>
#include <QWidget>

// Small pictures of the selected images in a row, of which one is shown in the preview. The row is
// one Tab stop; inside it the arrow keys choose. Images that are not sent are faint.
class PostStrip : public QWidget {
    Q_OBJECT
public:
    explicit PostStrip(QWidget* parent = nullptr);
    void setImages(const QList<PublishImage>& images, SocialFormat format);
    void setCurrent(QUuid image);    // emits nothing
    void setPicture(QUuid image, const QImage& picture);
    QList<QUuid> seen() const;
    QSize pictureSize() const;    // in device pixels
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {60, sizeHint().height()}; }

Q_SIGNALS:
    void chosen(QUuid image);
    void picturesWanted();    // of seen(), those that have none yet

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    QSize thumb() const;
    QRect boxOf(qsizetype index) const;
    qsizetype indexAt(QPoint position) const;
    void scrollTo(int offset);
    void ask();
    void describe();

    QList<PublishImage> m_images;
    SocialFormat m_format = SocialFormat::carouselPortrait;
    qsizetype m_current = 0;
    int m_offset = 0;    // pixels scrolled
    QHash<QUuid, QImage> m_pictures;
};
