#pragma once
#include "app/controls/Button.h"

class QMenu;

// A text with a chevron that opens a menu below it.
class MenuButton : public Control {
    Q_OBJECT
public:
    enum class Look { bare, field };
    MenuButton(const QString& text, Look look, QWidget* parent = nullptr);
    void setShown(const QString& text);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    void menuWanted(QMenu* menu);    // to be filled; it is opened and deleted afterwards

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void open();

    Look m_look;
};
