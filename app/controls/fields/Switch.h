#pragma once
#include "app/controls/Button.h"

// An on/off switch. clicked() is emitted only for the user, not by setChecked().
class Switch : public Control {
    Q_OBJECT
public:
    explicit Switch(const QString& name, QWidget* parent = nullptr);
    QSize sizeHint() const override { return {32, 24}; }

protected:
    void paintEvent(QPaintEvent* event) override;
};
