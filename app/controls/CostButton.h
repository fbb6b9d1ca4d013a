#pragma once
#include "app/controls/Button.h"
#include "app/controls/CostChip.h"

// A button whose action costs credits. The cost is shown at its right end.
class CostButton : public PushButton {
    Q_OBJECT
public:
    CostButton(Icon icon, const QString& text, int digits, QWidget* parent = nullptr);
    // `shown`: the button's text. `spoken`: the name for screen readers, which may be longer.
    void setWording(const QString& shown, const QString& spoken);
    // Reserves at least `width` pixels for the text, so that the button keeps its width when its
    // text changes.
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
