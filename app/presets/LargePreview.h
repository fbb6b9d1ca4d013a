#pragma once
#include <QImage>
#include <QPointer>
#include <QWidget>

// A large picture of a design beside the panel that lists the designs. The pointer goes through it.
// Esc or a press of a mouse button closes it.
class LargePreview : public QWidget {
    Q_OBJECT
public:
    // Appears at the left of `panel`, in its window.
    explicit LargePreview(QWidget* panel);

    // `picture` is shown until setPicture(); it may be null. `ratio`: width / height.
    void open(const QString& name, double ratio, const QImage& picture);
    void setPicture(const QImage& picture);
    QSize picturePixels() const;    // in device pixels

Q_SIGNALS:
    void closed();    // by the user

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QRect pictureRect() const;

    QPointer<QWidget> m_panel;
    QString m_name;
    QImage m_picture;
};
