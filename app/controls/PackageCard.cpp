#include "app/controls/PackageCard.h"

using namespace Qt::StringLiterals;

namespace {
constexpr int packageChipHeight = 32, cardHeight = 118, packageSide = 16, packageRadio = 20;
}

void paintRadio(QPainter& painter, const QRectF& box, const Theme& theme, bool checked,
                bool enabled)
{
    if (!checked)
        return strokeRounded(painter, box, box.width() / 2, enabled ? theme.text3 : theme.line2,
                             1.5);
    fillRounded(painter, box, box.width() / 2, enabled ? theme.accent : theme.dis);
    paintIcon(painter, Icon::check, box, 14, Qt::white);
}

PackageCard::PackageCard(PackageSize size, const Texts& texts, QWidget* parent)
    : Control(parent), m_size(size), m_texts(texts)
{
    setCheckable(true);
    setAutoExclusive(true);
    setText(texts.amount);
    setAccessibleName(u"%1 créditos, %2"_s.arg(texts.amount, texts.price));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setProperty("focusRadius", size == PackageSize::chip ? Radius::field : Radius::card);
}

QSize PackageCard::sizeHint() const
{
    return m_size == PackageSize::chip ? QSize(60, packageChipHeight) : QSize(120, cardHeight);
}

void PackageCard::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isChip = m_size == PackageSize::chip;
    const double radius = isChip ? Radius::field : Radius::card;
    const QColor resting = isChip ? theme.control : theme.card;
    QColor fill = isChecked() ? theme.accentSoft : mixed(resting, theme.hover, hovered());
    if (!isEnabled())
        fill = mixed(theme.panel, fill, 0.65);
    fillRounded(painter, rect(), radius, fill);
    if (isChecked())
        strokeRounded(painter, rect(), radius, isEnabled() ? theme.accentLine : theme.dis, 1.5);
    else if (!isChip)
        strokeRounded(painter, rect(), radius, theme.line);
    const QColor ink = isEnabled() ? theme.text : theme.dis;
    const QColor ink2 = isEnabled() ? theme.text2 : theme.dis;
    if (isChip)
        return paintText(painter, rect(), Qt::AlignHCenter, Type::bodyMedium, ink, m_texts.amount);
    const QRectF line(packageSide, 0, width() - 2 * packageSide, 20);
    paintRadio(painter,
               QRectF(width() - packageSide - packageRadio, 17, packageRadio, packageRadio), theme,
               isChecked(), isEnabled());
    paintText(painter, line.translated(0, 17), Qt::AlignLeft, Type::sheetTitle, ink,
              m_texts.amount);
    paintText(painter, line.translated(0, 37), Qt::AlignLeft, Type::small, ink2, m_texts.unit);
    paintText(painter, line.translated(0, 69), Qt::AlignLeft, Type::heading, ink, m_texts.price);
    paintText(painter, line.translated(0, 86), Qt::AlignLeft, Type::small, ink2, m_texts.use);
}
