#pragma once
#include "app/controls/Button.h"

// A button that stays on until it is pressed again.
class ToggleButton : public Control {
    Q_OBJECT
public:
    // `text` is also the accessible name.
    ToggleButton(Icon icon, const QString& text, QWidget* parent = nullptr);
    // Labels::hidden leaves only the icon; the text becomes the tooltip.
    void setLabels(Labels labels);
    // Sets the tooltip for while the button is disabled: the reason why it is disabled.
    void setReason(const QString& reason);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void explain();

    Icon m_icon;
    Labels m_labels = Labels::shown;
    QString m_reason;
};
