#pragma once
#include "app/controls/Button.h"

// A button that stays on until it is pressed again.
class ToggleButton : public Control {
    Q_OBJECT
public:
    // The text is the accessible name too.
    ToggleButton(Icon icon, const QString& text, QWidget* parent = nullptr);
    // Hidden labels become tooltips.
    void setLabels(Labels labels);
    // The reason why the button is disabled, its tooltip while it is.
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
