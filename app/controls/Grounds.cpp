#include "app/controls/Grounds.h"

#include "app/theme/Icons.h"
#include "app/theme/Painting.h"

CardGround::CardGround(Look look, QWidget* parent) : QWidget(parent), m_look(look) {}

void CardGround::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isAccent = m_look == Look::accent;
    fillRounded(painter, rect(), Radius::card, isAccent ? theme.accentSoft : theme.card);
    if (!isAccent)
        strokeRounded(painter, rect(), Radius::card, theme.line);
}

Divider::Divider(const QString& word, QWidget* parent) : QWidget(parent), m_word(word)
{
    setFixedHeight(word.isEmpty() ? 1 : row(Type::caption).lineHeight);
}

void Divider::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    const double gap = m_word.isEmpty() ? 0 : textWidth(Type::caption, m_word) / 2 + Space::medium;
    const double middle = width() / 2.0;
    const int top = height() / 2;
    painter.fillRect(QRectF(0, top, middle - gap, 1), theme.line2);
    painter.fillRect(QRectF(middle + gap, top, middle - gap, 1), theme.line2);
    paintText(painter, rect(), Qt::AlignHCenter, Type::caption, theme.text3, m_word);
}

void paintAvatar(QPainter& painter, const QRectF& box, const Theme& theme, const QString& initials)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.accentSoft);
    painter.drawEllipse(box);
    paintText(painter, box, Qt::AlignHCenter,
              box.width() > 32 ? Type::largeSemibold : Type::captionSemibold, theme.accentText,
              initials);
}

Avatar::Avatar(int side, QWidget* parent) : QWidget(parent)
{
    setFixedSize(side, side);
}

void Avatar::setInitials(const QString& initials)
{
    if (initials == m_initials)
        return;
    m_initials = initials;
    update();
}

void Avatar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintAvatar(painter, rect(), themeOf(this), m_initials);
}

IconView::IconView(Icon icon, QColor Theme::*ink, QWidget* parent)
    : QWidget(parent), m_icon(icon), m_ink(ink)
{
    setFixedSize(20, 20);
}

void IconView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    paintIcon(painter, m_icon, rect(), 16, themeOf(this).*m_ink);
}

IconTile::IconTile(Icon icon, int side, QWidget* parent) : QWidget(parent), m_icon(icon)
{
    setFixedSize(side, side);
}

void IconTile::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), 10, theme.accentSoft);
    paintIcon(painter, m_icon, rect(), 20, theme.accentText);
}
