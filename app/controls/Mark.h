#pragma once
#include <QWidget>

class QPainter;
struct Theme;

// Paints the program's logo in the square from (0, 0) to (28, 28).
void paintMark(QPainter& painter, const Theme& theme);

class Mark : public QWidget {
    Q_OBJECT
public:
    explicit Mark(int side, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};
