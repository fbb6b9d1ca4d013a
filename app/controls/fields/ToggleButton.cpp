#include "app/controls/fields/ToggleButton.h"

#include <QEvent>

namespace {
constexpr int height32 = 32, togglePadding = 10, toggleIconSide = 20, toggleIconGap = 8,
              foldedWidth = 36;
}

ToggleButton::ToggleButton(Icon icon, const QString& text, QWidget* parent)
    : Control(parent), m_icon(icon)
{
    setText(text);
    setAccessibleName(text);
    setCheckable(true);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setProperty("focusRadius", Radius::field);
}

void ToggleButton::setLabels(Labels labels)
{
    m_labels = labels;
    explain();
    updateGeometry();
    update();
}

void ToggleButton::setReason(const QString& reason)
{
    m_reason = reason;
    explain();
}

void ToggleButton::explain()
{
    if (!isEnabled())
        setToolTip(m_reason);
    else
        setToolTip(m_labels == Labels::hidden ? text() : QString());
}

bool ToggleButton::event(QEvent* event)
{
    if (event->type() == QEvent::EnabledChange)
        explain();
    return Control::event(event);
}

QSize ToggleButton::sizeHint() const
{
    if (m_labels == Labels::hidden)
        return {foldedWidth, height32};
    return {2 * togglePadding + toggleIconSide + toggleIconGap +
                qCeil(textWidth(Type::bodyMedium, text())),
            height32};
}

void ToggleButton::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool on = isChecked() && isEnabled();
    QColor fill =
        on ? mixed(theme.accentSoft, mixed(theme.accentSoft, theme.accent, 0.14), hovered())
           : withOpacity(theme.hover, isEnabled() ? hovered() : 0);
    if (isDown())
        fill = on ? fill : theme.seg;
    fillRounded(painter, rect(), Radius::field, fill);
    if (on)
        strokeRounded(painter, rect(), Radius::field, theme.accentLine, 1.5);
    QColor ink = on ? theme.accentText : mixed(theme.text2, theme.text, hovered());
    if (!isEnabled())
        ink = theme.dis;
    if (m_labels == Labels::hidden)
        return paintIcon(painter, m_icon, rect(), toggleIconSide, ink);
    paintIcon(painter, m_icon, QRectF(togglePadding, 0, toggleIconSide, height()), toggleIconSide,
              ink);
    const double left = togglePadding + toggleIconSide + toggleIconGap;
    paintText(painter, QRectF(left, 0, width() - left, height()), Qt::AlignLeft, Type::bodyMedium,
              ink, text(), Qt::ElideNone);
}
