#pragma once
#include <QAbstractSlider>

// A value on a short track. The mouse gives it no focus, and the wheel is left to what lies around
// it.
class ZoomSlider : public QAbstractSlider {
    Q_OBJECT
public:
    ZoomSlider(int lowest, int highest, QWidget* parent = nullptr);

    void setShownValue(int value);    // emits nothing
    void letGo() { rest(); }          // as if the mouse or the key were released now
    QSize sizeHint() const override { return {112, 28}; }

Q_SIGNALS:
    // By the user. `held` while the knob is dragged or a key repeats; then a last one without.
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
    double m_grip = 0;    // from the knob's centre to where it was taken
};
