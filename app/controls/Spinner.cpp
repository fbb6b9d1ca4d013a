#include "app/controls/Spinner.h"

#include "app/controls/Painting.h"

namespace {
constexpr int turnTime = 1000, frameTime = 33;    // ms
}

Spinner::Spinner(int side, QWidget* parent) : QWidget(parent)
{
    setFixedSize(side, side);
    m_spin.setInterval(frameTime);
    connect(&m_spin, &QTimer::timeout, this, [this] {
        m_turn = std::fmod(m_turn + double(frameTime) / turnTime, 1.0);
        update();
    });
}

void Spinner::showEvent(QShowEvent*)
{
    m_spin.start();
}

void Spinner::hideEvent(QHideEvent*)
{
    m_spin.stop();
}

void Spinner::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintSpinner(painter, rect(), theme.line2, theme.accentLine, m_turn,
                 std::max(1.8, width() / 10.0));
}
