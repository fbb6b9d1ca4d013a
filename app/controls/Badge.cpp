#include "app/controls/Badge.h"

#include "app/controls/Painting.h"

Badge::Badge(const QString& text, QWidget* parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setText(text);
}

void Badge::setText(const QString& text)
{
    m_text = text;
    setAccessibleName(text);
    updateGeometry();
    update();
}

QSize Badge::sizeHint() const
{
    return {m_text.isEmpty() ? 0 : qCeil(textWidth(Type::smallMedium, m_text)) + 12, 20};
}

void Badge::paintEvent(QPaintEvent*)
{
    if (m_text.isEmpty())
        return;
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), Radius::chip, theme.control);
    paintText(painter, rect(), Qt::AlignHCenter, Type::smallMedium, theme.text2, m_text,
              Qt::ElideNone);
}
