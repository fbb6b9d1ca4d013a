#include "app/controls/ProgressBar.h"

#include "app/theme/Painting.h"

#include <QStyle>

namespace {
constexpr int glideTime = 200, cycleTime = 1400, progressFrameTime = 33;    // ms
}

ProgressBar::ProgressBar(QWidget* parent) : QWidget(parent)
{
    setFixedHeight(4);
    m_glide.setDuration(glideTime);
    m_glide.setEasingCurve(QEasingCurve::OutCubic);
    m_cycle.setInterval(progressFrameTime);
    connect(&m_glide, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        m_shown = value.toDouble();
        update();
    });
    connect(&m_cycle, &QTimer::timeout, this, [this] {
        m_phase = std::fmod(m_phase + double(progressFrameTime) / cycleTime, 1.0);
        update();
    });
}

void ProgressBar::setValue(std::optional<double> value)
{
    if (value)
        value = std::clamp(*value, 0.0, 1.0);
    if (value == m_value)
        return;
    const double from = m_shown;
    const bool forward = m_value && value && *value > from;
    m_value = value;
    m_glide.stop();
    m_shown = value.value_or(0);
    const bool moves = style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0;
    if (forward && moves && isVisible()) {
        m_shown = from;
        m_glide.setStartValue(from);
        m_glide.setEndValue(*value);
        m_glide.start();
    }
    animate();
    update();
}

void ProgressBar::animate()
{
    if (isVisible() && !m_value)
        m_cycle.start();
    else
        m_cycle.stop();
}

void ProgressBar::showEvent(QShowEvent*)
{
    animate();
}

void ProgressBar::hideEvent(QHideEvent*)
{
    m_glide.stop();
    m_shown = m_value.value_or(0);
    m_cycle.stop();
}

void ProgressBar::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), 2, theme.line2);
    if (m_value) {
        if (m_shown > 0)
            fillRounded(painter, QRectF(0, 0, std::max(4.0, width() * m_shown), height()), 2,
                        theme.accentLine);
        return;
    }
    const double length = width() * 0.3;
    const double left = -length + (width() + length) * m_phase;
    fillRounded(painter, QRectF(left, 0, length, height()).intersected(QRectF(rect())), 2,
                theme.accentLine);
}
