#pragma once
#include <QAbstractSlider>

// A short horizontal slider. A click does not give it the focus, and the wheel is left to its
// parent widget.
class ZoomSlider : public QAbstractSlider {
    Q_OBJECT
public:
    ZoomSlider(int lowest, int highest, QWidget* parent = nullptr);

    void setShownValue(int value);            // emits nothing
    void endGesture() { finishGesture(); }    // ends a drag or a held key before its release
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
    double knobAt() const;    // x of the knob's centre
    int valueAt(double x) const;
    void finishGesture();

    bool m_held = false;
    bool m_toldHeld = false;
    bool m_quiet = false;
    double m_grip = 0;    // from the knob's centre to the pointer, in pixels
};
