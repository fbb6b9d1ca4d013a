#include "app/controls/Caption.h"

#include "app/controls/Painting.h"

Caption::Caption(Type type, QColor Theme::*ink, const QString& text, QWidget* parent)
    : QWidget(parent), m_type(type), m_ink(ink)
{
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
    return {qCeil(textWidth(m_type, m_text)), 20};
}

QSize Caption::minimumSizeHint() const
{
    return {std::min(sizeHint().width(), 24), 20};
}

void Caption::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    paintText(painter, rect(), Qt::AlignLeft, m_type, themeOf(this).*m_ink, m_text);
}
