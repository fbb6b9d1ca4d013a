#pragma once
#include <QPixmap>
#include <QWidget>

// Finished posts, dark towards the bottom, with what the program is for. The same in both themes.
class SignInWall : public QWidget {
    Q_OBJECT
public:
    explicit SignInWall(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QPixmap m_picture;    // only while it is shown
};
