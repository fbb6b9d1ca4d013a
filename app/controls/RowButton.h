#pragma once
#include "app/controls/Button.h"

// A row of a list that leads somewhere, as wide as its room. Checkable, it is one of several, of
// which the arrows choose.
class RowButton : public Control {
    Q_OBJECT
public:
    RowButton(Icon icon, const QString& text, QWidget* parent = nullptr);
    // At the right end, of what it does with what is below.
    void setMark(Icon icon);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Icon m_icon, m_mark = Icon::none;
};
