#pragma once
#include "app/controls/Button.h"
#include "app/controls/CostChip.h"

// A button whose action costs credits; the cost stands at its right end.
class CostButton : public PushButton {
    Q_OBJECT
public:
    CostButton(Icon icon, const QString& text, int digits, QWidget* parent = nullptr);
    // `shown` may be shorter than `spoken`, which a screen reader says.
    void setWording(const QString& shown, const QString& spoken);
    // The least width of the text, in pixels: keeps the button's width when its text changes.
    void setTextRoom(int width);
    void setCost(const Cost& cost);
    const Cost& cost() const { return m_chip->cost(); }
    QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    CostChip* m_chip;
    int m_textRoom = 0;
};
