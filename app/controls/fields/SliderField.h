#pragma once
#include "model/Pace.h"

#include <QElapsedTimer>
#include <QWidget>

#include <optional>

class LineField;

// What a number stands for, and with it how it is written and how fine it is.
enum class SliderUnit { plain, percent, multiplier, degrees };

struct SliderRange {
    SliderUnit unit = SliderUnit::plain;
    double from = 0, to = 1;    // of percent, 1 is a hundred
};

// A number with its name. Dragged sideways it changes, Shift for a tenth of the speed; a click
// opens it for typing, a double click gives the default back. The arrows step by one, with Shift
// by ten; Home and End go to the bounds, Enter types.
class SliderField : public QWidget {
    Q_OBJECT
public:
    SliderField(const QString& label, SliderRange range, QWidget* parent = nullptr);

    // Shows; emits nothing. What is out of range is shown as the nearest bound.
    void setValue(double value);
    void setDefault(double value);
    // The value stands for nothing, and is not shown.
    void setBlank(bool blank);
    bool isBlank() const { return m_blank; }
    // Where something else stops what larger values would do; empty where nothing does.
    void setLimit(std::optional<double> limit);
    void letGo() { rest(); }    // as if the mouse or the key were released now
    double value() const { return m_value; }
    SliderRange range() const { return m_range; }
    QString valueText() const;
    double step() const;
    // As if the user had typed it.
    void enter(double value);
    QSize sizeHint() const override { return {132, 32}; }
    QSize minimumSizeHint() const override { return {80, 32}; }

Q_SIGNALS:
    // Held for each change on the way; a last one at rest always follows, changed or not.
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
    double share(double value) const;    // of the range
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
    double m_dragged = 0;    // the value before it is snapped
    QElapsedTimer m_opened;
    bool m_openedByKey = false;
    LineField* m_edit;
};
