#include "app/controls/ProgressBar.h"

#include "app/theme/Painting.h"

#include <QAccessibleWidget>
#include <QStyle>

namespace {

constexpr int glideTime = 200, cycleTime = 1400, progressFrameTime = 33;    // ms

// The value as a percentage.
class ProgressAccessible : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit ProgressAccessible(ProgressBar* bar) : QAccessibleWidget(bar, QAccessible::ProgressBar)
    {
    }
    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QVariant currentValue() const override
    {
        const auto* bar = qobject_cast<const ProgressBar*>(object());
        const auto value = bar ? bar->value() : std::nullopt;
        return value ? QVariant(qRound(*value * 100)) : QVariant();
    }
    QString text(QAccessible::Text kind) const override
    {
        const QVariant value = currentValue();
        return kind == QAccessible::Description && value.isValid()
                   ? QStringLiteral("%1 %").arg(value.toInt())
                   : QAccessibleWidget::text(kind);
    }
    void setCurrentValue(const QVariant&) override {}
    QVariant maximumValue() const override { return 100; }
    QVariant minimumValue() const override { return 0; }
    QVariant minimumStepSize() const override { return 1; }
};

QAccessibleInterface* accessibleProgressOf(const QString&, QObject* object)
{
    auto* bar = qobject_cast<ProgressBar*>(object);
    return bar ? new ProgressAccessible(bar) : nullptr;
}

}    // namespace

ProgressBar::ProgressBar(QWidget* parent) : QWidget(parent)
{
    QAccessible::installFactory(accessibleProgressOf);
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
    if (m_value)
        m_announcer.tellStep();
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

void ProgressBar::tellValue()
{
    if (!QAccessible::isActive() || !isVisible() || !m_value)
        return;
    QAccessibleValueChangeEvent event(this, qRound(*m_value * 100));
    QAccessible::updateAccessibility(&event);
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
    const double radius = height() / 2.0;
    fillRounded(painter, rect(), radius, theme.line2);
    const QRectF part = filled();
    if (!part.isEmpty())
        fillRounded(painter, part, radius, theme.accentLine);
}

QRectF ProgressBar::filled() const
{
    if (m_value)
        return m_shown > 0 ? QRectF(0, 0, std::max(4.0, width() * m_shown), height()) : QRectF();
    const double length = width() * 0.3;
    const double left = -length + (width() + length) * m_phase;
    return QRectF(left, 0, length, height()).intersected(QRectF(rect()));
}
