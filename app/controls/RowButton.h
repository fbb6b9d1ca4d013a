#pragma once
#include "app/controls/Button.h"

// A button that is one row of a list; a layout may stretch it to the full width. For a choice
// between rows, make them checkable and auto-exclusive: then the arrow keys choose.
class RowButton : public Control {
    Q_OBJECT
public:
    RowButton(Icon icon, const QString& text, QWidget* parent = nullptr);
    // Shows `icon` at the right end, such as a chevron that says whether the row is unfolded.
    void setMark(Icon icon);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Icon m_icon, m_mark = Icon::none;
};
