#pragma once
#include <QPixmap>
#include <QWidget>

// A picture of finished posts with the program's claim, dark towards the bottom. It looks alike in
// both themes.
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
