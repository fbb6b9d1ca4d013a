#pragma once
#include "app/controls/Button.h"

// A switch, on or off. The program sets it with setChecked(); clicked() comes from the user only.
class Switch : public Control {
    Q_OBJECT
public:
    explicit Switch(const QString& name, QWidget* parent = nullptr);
    QSize sizeHint() const override { return {32, 24}; }

protected:
    void paintEvent(QPaintEvent* event) override;
};
