#include "app/ViewBar.h"

#include "app/controls/Button.h"

using namespace Qt::StringLiterals;

namespace {
constexpr int barHeight = 52, side = 12, buttonSide = 32, numberGap = 8;
}

ViewBar::ViewBar(QWidget* parent)
    : QWidget(parent),
      m_previous(new IconButton(Icon::previous, u"Imagen anterior"_qs, buttonSide, this)),
      m_next(new IconButton(Icon::next, u"Imagen siguiente"_qs, buttonSide, this))
{
    setFixedHeight(barHeight);
    connect(m_previous, &IconButton::clicked, this, &ViewBar::previousRequested);
    connect(m_next, &IconButton::clicked, this, &ViewBar::nextRequested);
    setPosition(0, 0);
}

void ViewBar::setPosition(int current, int count)
{
    m_current = current;
    m_count = count;
    m_previous->setEnabled(count > 0 && current > 0);
    m_next->setEnabled(count > 0 && current < count - 1);
    setAccessibleName(count > 0 ? u"Imagen %1 de %2"_qs.arg(current + 1).arg(count) : QString());
    place();
    update();
}

QList<QWidget*> ViewBar::focusOrder() const
{
    return {m_previous, m_next};
}

double ViewBar::numberWidth() const
{
    return digitsWidth(Type::heading, int(QString::number(m_count).size()));
}

void ViewBar::resizeEvent(QResizeEvent*)
{
    place();
}

void ViewBar::place()
{
    const int top = (barHeight - buttonSide) / 2 + 1;
    m_previous->move(side, top);
    const double label = numberWidth() + textWidth(Type::body, u" de "_qs) +
                         digitsWidth(Type::body, int(QString::number(m_count).size()));
    m_next->move(side + buttonSide + 2 * numberGap + qCeil(label), top);
}

void ViewBar::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), theme.panel);
    painter.fillRect(0, 0, width(), 1, theme.line);
    if (m_count == 0)
        return;
    const QRectF number(side + buttonSide + numberGap, 1, numberWidth(), height() - 1);
    paintText(painter, number, Qt::AlignRight, Type::heading, theme.text,
              QString::number(m_current + 1), Qt::ElideNone);
    paintText(painter, QRectF(number.right(), 1, 200, height() - 1), Qt::AlignLeft, Type::body,
              theme.text2, u" de %1"_qs.arg(m_count), Qt::ElideNone);
}
