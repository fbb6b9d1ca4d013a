#include "app/controls/Paragraph.h"

#include "app/controls/AccessibleRole.h"
#include "app/theme/Painting.h"

#include <QHelpEvent>
#include <QTextLayout>
#include <QToolTip>

QStringList wrappedRows(const QString& text, Type type, double width, int mostRows)
{
    QStringList rows;
    qsizetype start = 0;    // index in `text` where `line` begins
    for (const QString& line : text.split(u'\n')) {
        QTextLayout layout(line, fontOf(type));
        QTextOption option;
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        layout.setTextOption(option);
        layout.beginLayout();
        for (QTextLine row = layout.createLine(); row.isValid(); row = layout.createLine()) {
            row.setLineWidth(std::max(1.0, width));
            if (rows.size() == mostRows - 1) {
                rows.append(text.mid(start + row.textStart()).replace(u'\n', u' '));
                return rows;
            }
            rows.append(line.mid(row.textStart(), row.textLength()).trimmed());
        }
        layout.endLayout();
        start += line.size() + 1;
    }
    return rows;
}

Paragraph::Paragraph(Type type, QColor Theme::*ink, const QString& text, QWidget* parent)
    : QWidget(parent), m_type(type), m_ink(ink)
{
    setAccessibleRole(this, QAccessible::StaticText);
    // Preferred, not Fixed: with Fixed, a layout would always use the height of sizeHint(), which
    // was calculated for another width.
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setText(text);
}

void Paragraph::setText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    if (m_spoken == Spoken::byItself)
        setAccessibleName(text);
    updateGeometry();
    update();
}

void Paragraph::setSpoken(Spoken spoken)
{
    m_spoken = spoken;
    const bool isOwn = spoken == Spoken::byItself;
    setAccessibleRole(this, isOwn ? QAccessible::StaticText : QAccessible::Client);
    setAccessibleName(isOwn ? m_text : QString());
}

void Paragraph::setInk(QColor Theme::*ink)
{
    m_ink = ink;
    update();
}

void Paragraph::setMostRows(int rows)
{
    m_mostRows = rows;
    updateGeometry();
}

void Paragraph::setGround(QColor Theme::*ground)
{
    m_ground = ground;
    update();
}

int Paragraph::heightForWidth(int width) const
{
    const int rows = int(wrappedRows(m_text, m_type, width, m_mostRows).size());
    return std::max(rows, 1) * row(m_type).lineHeight;
}

QSize Paragraph::sizeHint() const
{
    constexpr int widest = 420;
    const int width = std::min(widest, qCeil(textWidth(m_type, m_text.left(200))) + 1);
    return {width, heightForWidth(width)};
}

QSize Paragraph::minimumSizeHint() const
{
    return {40, row(m_type).lineHeight};
}

bool Paragraph::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const QStringList rows = wrappedRows(m_text, m_type, width(), m_mostRows);
    if (textWidth(m_type, rows.last()) > width())
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), plainToolTip(m_text),
                           this);
    return true;
}

void Paragraph::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    if (m_ground)
        painter.fillRect(rect(), themeOf(this).*m_ground);
    const QColor ink = isEnabled() ? themeOf(this).*m_ink : themeOf(this).dis;
    QRectF line(0, 0, width(), row(m_type).lineHeight);
    for (const QString& text : wrappedRows(m_text, m_type, width(), m_mostRows)) {
        paintText(painter, line, Qt::AlignLeft, m_type, ink, text);
        line.translate(0, line.height());
    }
}
