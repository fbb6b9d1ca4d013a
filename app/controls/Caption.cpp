#include "app/controls/Caption.h"

#include "app/controls/AccessibleRole.h"
#include "app/theme/Painting.h"

#include <QHelpEvent>
#include <QToolTip>

Caption::Caption(Type type, QColor Theme::*ink, const QString& text, QWidget* parent)
    : QWidget(parent), m_type(type), m_ink(ink)
{
    setAccessibleRole(this, QAccessible::StaticText);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setText(text);
}

void Caption::setText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    setAccessibleName(text);
    updateGeometry();
    update();
}

QSize Caption::sizeHint() const
{
    return {qCeil(textWidth(m_type, m_text)), std::max(20, row(m_type).lineHeight)};
}

QSize Caption::minimumSizeHint() const
{
    return {std::min(sizeHint().width(), 24), sizeHint().height()};
}

void Caption::setAlignment(Qt::Alignment alignment)
{
    m_alignment = alignment;
    update();
}

bool Caption::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip || !toolTip().isEmpty() ||
        textWidth(m_type, m_text) <= width())
        return QWidget::event(event);
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), plainToolTip(m_text), this);
    return true;
}

void Caption::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    paintText(painter, rect(), m_alignment, m_type, themeOf(this).*m_ink, m_text);
}
