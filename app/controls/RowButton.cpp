#include "app/controls/RowButton.h"

namespace {
constexpr int height36 = 36, rowButtonPadding = 10, rowButtonIconSide = 20, rowButtonIconGap = 10;
constexpr double rowLineWidth = 3, rowLineInset = 9;    // of the line beside the chosen row
}    // namespace

RowButton::RowButton(Icon icon, const QString& text, QWidget* parent)
    : Control(parent), m_icon(icon)
{
    setText(text);
    setAccessibleName(text);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setProperty("focusRadius", Radius::field);
}

void RowButton::setMark(Icon icon)
{
    m_mark = icon;
    update();
}

QSize RowButton::sizeHint() const
{
    return {2 * rowButtonPadding + rowButtonIconSide + rowButtonIconGap +
                qCeil(textWidth(Type::bodyMedium, text())),
            height36};
}

void RowButton::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), Radius::field,
                isChecked() ? theme.control : withOpacity(theme.hover, hovered()));
    if (isChecked())
        fillRounded(painter, QRectF(0, rowLineInset, rowLineWidth, height() - 2 * rowLineInset),
                    rowLineWidth / 2, isEnabled() ? theme.accentLine : theme.dis);
    QColor ink = isChecked() ? theme.text : mixed(theme.text2, theme.text, hovered());
    if (!isEnabled())
        ink = theme.dis;
    paintIcon(painter, m_icon, QRectF(rowButtonPadding, 0, rowButtonIconSide, height()),
              rowButtonIconSide, ink);
    const double left = rowButtonPadding + rowButtonIconSide + rowButtonIconGap;
    paintText(painter, QRectF(left, 0, width() - left - rowButtonPadding, height()), Qt::AlignLeft,
              Type::bodyMedium, isEnabled() ? theme.text : theme.dis, text());
    paintIcon(
        painter, m_mark,
        QRectF(width() - rowButtonPadding - rowButtonIconSide, 0, rowButtonIconSide, height()), 16,
        ink);
}
