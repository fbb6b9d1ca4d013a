#pragma once
#include "model/Pace.h"

#include <QElapsedTimer>
#include <QWidget>

#include <optional>

class LineField;

// The unit of a slider's number: how it is written, and how finely it changes.
enum class SliderUnit { plain, percent, multiplier, degrees };

struct SliderRange {
    SliderUnit unit = SliderUnit::plain;
    double from = 0, to = 1;    // as a percentage, 1 is 100 %
};

// A labelled number. Dragging sideways changes it, with Shift at a tenth of the speed; a click
// opens it for typing, a double click restores the default. The arrow keys step by one, with Shift
// by ten; Home and End go to the bounds, Enter opens it for typing.
class SliderField : public QWidget {
    Q_OBJECT
public:
    SliderField(const QString& label, SliderRange range, QWidget* parent = nullptr);

    // Shows a value; emits nothing. A value out of range is shown as the nearest bound.
    void setValue(double value);
    void setDefault(double value);
    // Shows no value, because nothing is selected that has one.
    void setBlank(bool blank);
    bool isBlank() const { return m_blank; }
    // Marks the value beyond which a larger one has no effect; without a limit there is no mark.
    void setLimit(std::optional<double> limit);
    void endGesture() { rest(); }    // ends a drag or held key now
    double value() const { return m_value; }
    SliderRange range() const { return m_range; }
    QString valueText() const;
    double step() const;
    // Sets the value as if the user had typed it.
    void enter(double value);
    QSize sizeHint() const override { return {132, 32}; }
    QSize minimumSizeHint() const override { return {80, 32}; }

Q_SIGNALS:
    // Pace::held for each change during a drag or a held key; at its end always Pace::once, even if
    // the value has not changed.
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
    double share(double value) const;    // of the range, 0 to 1
    double snapped(double value) const;
    void hold(double value);
    void rest();
    void restoreDefault();
    void openEdit(Qt::FocusReason reason);
    void closeEdit();

    QString m_label;
    SliderRange m_range;
    double m_value = 0;
    double m_default = 0;
    bool m_blank = false;
    std::optional<double> m_limit;
    bool m_holding = false;
    enum class Press { none, click, drag };
    Press m_press = Press::none;
    double m_pressX = 0;
    double m_dragged = 0;    // the value of a drag before it is rounded
    QElapsedTimer m_opened;
    bool m_openedByKey = false;
    LineField* m_edit;
};
