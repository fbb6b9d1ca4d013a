#pragma once
#include "app/controls/Button.h"

// A row of a list, as wide as its place. A checkable one belongs to a group, in which the arrow
// keys choose.
class RowButton : public Control {
    Q_OBJECT
public:
    RowButton(Icon icon, const QString& text, QWidget* parent = nullptr);
    // An icon at the right end, such as the one for folding what is below.
    void setMark(Icon icon);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Icon m_icon, m_mark = Icon::none;
};
