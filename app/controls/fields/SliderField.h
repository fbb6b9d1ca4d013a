#pragma once
#include "model/Pace.h"

#include <QElapsedTimer>
#include <QWidget>

#include <optional>

class LineField;

// The unit of a slider's value: decides how the value is written and in what steps it changes.
// With `pixels`, a drag changes the value by one for each pixel, and no bar shows the range.
enum class SliderUnit { plain, percent, multiplier, degrees, pixels };

struct SliderRange {
    SliderUnit unit = SliderUnit::plain;
    double from = 0, to = 1;    // with SliderUnit::percent, 1 means 100 %
};

// A labelled number. Dragging sideways changes it, with Shift at a tenth of the speed; a click
// opens it for typing, a double click restores the default. The arrow keys change it by step(),
// with Shift by ten steps; Home and End set it to the bounds; Enter opens it for typing.
class SliderField : public QWidget {
    Q_OBJECT
public:
    SliderField(const QString& label, SliderRange range, QWidget* parent = nullptr);

    // Shows a value; emits nothing. A value out of range is shown as the nearest bound.
    void setValue(double value);
    void setDefault(double value);    // without it, a double click restores nothing
    // The value of a field whose bounds depend on what else is set; emits nothing.
    void setValue(double value, double from, double to);
    // Shows no value, for when nothing is selected that has one.
    void setBlank(bool blank);
    bool isBlank() const { return m_blank; }
    // Marks the value above which a larger value has no effect. Empty: no mark.
    void setLimit(std::optional<double> limit);
    void endGesture() { finishGesture(); }    // ends a drag or a held key before its release
    double value() const { return m_value; }
    SliderRange range() const { return m_range; }
    QString valueText() const;
    double step() const;
    // Sets the value as if the user had typed it.
    void enter(double value);
    QSize sizeHint() const override { return {132, 32}; }
    QSize minimumSizeHint() const override { return {80, 32}; }

Q_SIGNALS:
    // `pace` is Pace::held for each change during a drag or a held key. When that ends, the signal
    // is emitted once more with Pace::once, even if the value has not changed.
    void valueChanged(double value, Pace pace);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    std::optional<double> read(const QString& text) const;
    double share(double value) const;    // how far along the range, 0 to 1
    double snapped(double value) const;
    void hold(double value);
    void finishGesture();
    void restoreDefault();
    void openEdit(Qt::FocusReason reason);
    void closeEdit();

    QString m_label;
    SliderRange m_range;
    double m_value = 0;
    std::optional<double> m_default;
    bool m_blank = false;
    std::optional<double> m_limit;
    bool m_holding = false;
    enum class Press { none, click, drag };
    Press m_press = Press::none;
    double m_pressX = 0;
    double m_dragged = 0;    // the value during a drag, before it is rounded
    QElapsedTimer m_opened;
    bool m_openedByKey = false;
    LineField* m_edit;
};
