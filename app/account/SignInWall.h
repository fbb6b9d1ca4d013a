#pragma once
#include <QPixmap>
#include <QWidget>

// A picture of finished posts, which darkens towards the bottom, where the program's claim is. It
// looks the same in the light and the dark theme.
class SignInWall : public QWidget {
    Q_OBJECT
public:
    explicit SignInWall(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QPixmap m_picture;    // loaded only while the wall is visible
};
