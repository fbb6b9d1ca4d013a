#pragma once
#include <QAbstractSlider>

// A slider on a short track. The mouse gives it no focus, and the wheel goes to the widget around
// it.
class ZoomSlider : public QAbstractSlider {
    Q_OBJECT
public:
    ZoomSlider(int lowest, int highest, QWidget* parent = nullptr);

    void setShownValue(int value);    // emits nothing
    void endGesture() { rest(); }     // ends a drag or held key now
    QSize sizeHint() const override { return {112, 28}; }

Q_SIGNALS:
    // The user has moved the knob. `held` is true during a drag or while a key repeats; when that
    // ends, moved() is emitted once more, with false.
    void moved(int value, bool held);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    double knobAt() const;    // its centre
    int valueAt(double x) const;
    void rest();

    bool m_held = false;
    bool m_toldHeld = false;
    bool m_quiet = false;
    double m_grip = 0;    // from the knob's centre to the pointer, in pixels
};
