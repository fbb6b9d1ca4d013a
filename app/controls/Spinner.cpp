#include "app/controls/Spinner.h"

#include "app/theme/Painting.h"

Spinner::Spinner(int side, QWidget* parent) : QWidget(parent), m_turn(this)
{
    setFixedSize(side, side);
}

void Spinner::showEvent(QShowEvent*)
{
    m_turn.run(true);
}

void Spinner::hideEvent(QHideEvent*)
{
    m_turn.run(false);
}

void Spinner::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintSpinner(painter, rect(), theme.line2, theme.accentLine, m_turn.value(),
                 std::max(1.8, width() / 10.0));
}
