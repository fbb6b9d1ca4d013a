#pragma once
#include "model/Pace.h"

#include <QWidget>

enum class ColorPlaneKind { shade, hue };

// A surface of colours with a mark to drag. ColorPlaneKind::shade shows saturation and value of one
// hue, ColorPlaneKind::hue all hues in a row. The arrow keys move the mark by a hundredth of the
// surface, with Shift by a tenth.
class ColorPlane : public QWidget {
    Q_OBJECT
public:
    ColorPlane(ColorPlaneKind kind, const QString& name, QWidget* parent = nullptr);
    void setHue(double hue);    // 0 to 1
    // Sets the position of the mark: fractions of width and height from the top left corner. For
    // ColorPlaneKind::hue, y is 0.5.
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
    void nameMark();    // says in words where the mark is
    void finishGesture();

    ColorPlaneKind m_kind;
    double m_hue = 0;
    QPointF m_mark;
    bool m_holding = false;
};
