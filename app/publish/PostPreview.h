#pragma once
#include "app/publish/PublishShown.h"

#include <QImage>
#include <QWidget>

class Control;

// What the preview shows of a post.
struct PostShown {
    SocialFormat format = SocialFormat::carouselPortrait;
    bool isStory = false;
    QString account = {};    // who posts
    QString caption = {};
    qsizetype position = 0;    // of the image among those of the post; -1: it is not sent
    qsizetype count = 0;       // of the images of the post
    QString name = {};         // of the image
    bool operator==(const PostShown&) const = default;
};

// One image of a post as the network shows it: a story has the shape of a phone's screen, with
// black bars where the image does not fill it, and its safe zone marked; a post of the feed has its
// account above, and below its caption, cut after three lines.
class PostPreview : public QWidget {
    Q_OBJECT
public:
    explicit PostPreview(QWidget* parent = nullptr);
    void setPost(const PostShown& post);
    void setPicture(const QImage& picture);    // null: it is not drawn yet
    QSize pictureSize() const;                 // in device pixels
    QList<QWidget*> focusOrder() const;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override { return {308, heightForWidth(308)}; }
    QSize minimumSizeHint() const override { return {120, 160}; }

Q_SIGNALS:
    void stepRequested(int images);
    void pictureSizeChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    int above() const;    // height of what is above the picture
    int below() const;
    QSize shape() const;    // of the area that the network gives the image
    void fit();
    void paintCaption(QPainter& painter, const QRectF& box) const;
    void paintDots(QPainter& painter, const QRectF& box) const;

    PostShown m_post;
    QImage m_picture;
    QRect m_card, m_frame, m_canvas;    // the frame holds the canvas
    Control* m_previous;
    Control* m_next;
};
