#pragma once
#include "app/controls/Button.h"
#include "model/ShapeLayer.h"

// A button that adds a shape of one kind: shows the icon above the name of the kind.
class AddShapeButton : public Control {
    Q_OBJECT
public:
    explicit AddShapeButton(ShapeKind kind, QWidget* parent = nullptr);
    QSize sizeHint() const override { return {72, 68}; }
    QSize minimumSizeHint() const override { return {56, 68}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Icon m_icon;
};
