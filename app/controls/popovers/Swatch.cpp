#include "app/controls/popovers/Swatch.h"

void paintColor(QPainter& painter, const QRectF& box, const QColor& color, const Theme& theme,
                bool enabled)
{
    if (color.isValid())
        fillRounded(painter, box, Radius::chip, enabled ? color : mixed(theme.panel, color, 0.35));
    strokeRounded(painter, box, Radius::chip, mixed(theme.line2, theme.dis, enabled ? 0.6 : 0));
}

Swatch::Swatch(const QString& name, QWidget* parent) : Control(parent)
{
    setAccessibleName(name);
    setToolTip(name);
    setFixedSize(32, 32);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setProperty("focusRadius", Radius::field);
    connect(this, &Swatch::clicked, this, &Swatch::toggle);
}

void Swatch::setColor(const QColor& color)
{
    if (color == m_color)
        return;
    m_color = color;
    if (m_popover)
        m_popover->setColor(color);
    update();
}

void Swatch::setOffers(const ColorOffers& offers)
{
    m_offers = offers;
}

void Swatch::closePopover()
{
    if (m_popover)
        m_popover->close();
}

void Swatch::toggle()
{
    if (m_popover)
        return closePopover();
    m_popover = new ColorPopover(this, m_color, m_offers);
    connect(m_popover, &ColorPopover::colorUsed, this, &Swatch::colorUsed);
    connect(m_popover, &Popover::closing, this, [this] { m_popover = nullptr; });
    connect(m_popover, &ColorPopover::colorChanged, this, [this](const QColor& color, Pace pace) {
        m_color = color;
        update();
        Q_EMIT colorChanged(color, pace);
    });
    m_popover->open(hasFocus() ? Qt::TabFocusReason : Qt::MouseFocusReason);
}

void Swatch::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), Radius::field,
                isEnabled() ? mixed(theme.control, theme.hover, hovered())
                            : mixed(theme.panel, theme.control, 0.65));
    paintColor(painter, QRectF(rect()).adjusted(6.5, 6.5, -6.5, -6.5), m_color, theme, isEnabled());
}
