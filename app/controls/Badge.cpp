#include "app/controls/Badge.h"

#include "app/controls/AccessibleRole.h"
#include "app/theme/Painting.h"

namespace {
constexpr int badgePadding = 6, badgeIconSide = 14, badgeIconGap = 5;
}

Badge::Badge(const QString& text, QWidget* parent) : QWidget(parent)
{
    setAccessibleRole(this, QAccessible::StaticText);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setText(text);
}

Badge::Badge(BadgeKind kind, Icon icon, QWidget* parent) : Badge(QString(), parent)
{
    m_kind = kind;
    m_icon = icon;
}

void Badge::setText(const QString& text)
{
    if (text == m_text && accessibleName() == text)
        return;
    m_text = text;
    setAccessibleName(text);
    updateGeometry();
    update();
}

QSize Badge::sizeHint() const
{
    if (m_text.isEmpty())
        return {0, 20};
    const int icon = m_icon == Icon::none ? 0 : badgeIconSide + badgeIconGap;
    return {2 * badgePadding + icon + qCeil(textWidth(Type::smallMedium, m_text)), 20};
}

void Badge::paintEvent(QPaintEvent*)
{
    if (m_text.isEmpty())
        return;
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool accent = m_kind == BadgeKind::accent;
    const QColor ink = accent ? theme.accentText : theme.text2;
    fillRounded(painter, rect(), Radius::chip, accent ? theme.accentSoft : theme.control);
    QRectF line = QRectF(rect()).adjusted(badgePadding, 0, -badgePadding, 0);
    if (m_icon != Icon::none) {
        paintIcon(painter, m_icon, QRectF(badgePadding, 0, badgeIconSide, height()), badgeIconSide,
                  ink);
        line.setLeft(badgePadding + badgeIconSide + badgeIconGap);
    }
    paintText(painter, line, Qt::AlignHCenter, Type::smallMedium, ink, m_text, Qt::ElideNone);
}
