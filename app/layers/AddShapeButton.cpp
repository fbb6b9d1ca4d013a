#include "app/layers/AddShapeButton.h"

namespace {
constexpr int addShapeRadius = 10, addShapeIconSide = 20, iconMiddle = 24, labelMiddle = 47;
}

AddShapeButton::AddShapeButton(ShapeKind kind, QWidget* parent)
    : Control(parent), m_icon(iconNamed(row(kind).icon))
{
    setText(rawValue(kind));
    setAccessibleName(text());
    setFixedHeight(68);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setProperty("focusRadius", addShapeRadius);
}

void AddShapeButton::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), addShapeRadius,
                isDown() ? theme.hover : mixed(theme.card, theme.hover, hovered()));
    strokeRounded(painter, rect(), addShapeRadius, theme.line);
    const QColor ink = isEnabled() ? mixed(theme.text2, theme.text, hovered()) : theme.dis;
    paintIcon(painter, m_icon, QRectF(0, iconMiddle - 10, width(), 20), addShapeIconSide, ink);
    const QRectF label(0, labelMiddle - 10, width(), 20);
    const bool narrow = textWidth(Type::small, text()) > label.width();
    paintText(painter, label, Qt::AlignHCenter, narrow ? Type::caption : Type::small, ink, text());
}
