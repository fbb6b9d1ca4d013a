#include "app/controls/Mark.h"

#include "app/theme/Painting.h"

void paintMark(QPainter& painter, const Theme& theme)
{
    fillRounded(painter, QRectF(0, 0, 28, 28), 8, theme.accent);
    fillRounded(painter, QRectF(6, 6.4, 8.8, 12.2), 2.4, QColor(255, 255, 255, 133));
    fillRounded(painter, QRectF(11, 8, 11, 13.6), 2.4, Qt::white);
    fillRounded(painter, QRectF(13.2, 17.1, 6.4, 1.7), 0.85, theme.accent);
}

Mark::Mark(int side, QWidget* parent) : QWidget(parent)
{
    setFixedSize(side, side);
}

void Mark::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(width() / 28.0, height() / 28.0);
    paintMark(painter, themeOf(this));
}
