#pragma once
#include "model/Pace.h"

#include <QWidget>

enum class ColorPlaneKind { shade, hue };

// A mark dragged over a field of colours: saturation and value of a hue, or the hues in a row. The
// arrows move it by one in a hundred, with Shift by ten.
class ColorPlane : public QWidget {
    Q_OBJECT
public:
    ColorPlane(ColorPlaneKind kind, const QString& name, QWidget* parent = nullptr);
    void setHue(double hue);    // 0 to 1
    // From the top left corner, 0 to 1; hues have no y.
    void setMark(QPointF mark);
    QPointF mark() const { return m_mark; }

Q_SIGNALS:
    void moved(QPointF mark, Pace pace);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void moveTo(QPointF mark);
    void rest();

    ColorPlaneKind m_kind;
    double m_hue = 0;
    QPointF m_mark;
    bool m_holding = false;
};
