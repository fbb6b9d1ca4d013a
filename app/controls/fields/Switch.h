#pragma once
#include "app/controls/Button.h"

// On or off. Shown with setChecked(); clicked() is the user's.
class Switch : public Control {
    Q_OBJECT
public:
    explicit Switch(const QString& name, QWidget* parent = nullptr);
    QSize sizeHint() const override { return {32, 24}; }

protected:
    void paintEvent(QPaintEvent* event) override;
};
