#pragma once
#include "app/controls/Button.h"
#include "app/controls/CostChip.h"

// A button for what costs credits: how many stands at its right end.
class CostButton : public PushButton {
    Q_OBJECT
public:
    CostButton(Icon icon, const QString& text, int digits, QWidget* parent = nullptr);
    // What is seen may be shorter than what a screen reader says.
    void setWording(const QString& shown, const QString& spoken);
    // The least that the text takes, in pixels: for texts that take each other's place.
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
