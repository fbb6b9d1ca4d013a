#include "app/controls/fields/TabStrip.h"

#include "app/controls/PartsAccessible.h"
#include "app/theme/KeyboardFocus.h"
#include "app/theme/Painting.h"

#include <QHoverEvent>
#include <QKeyEvent>

namespace {
constexpr int stripHeight = 44, compactStripHeight = 36, tabIconSide = 20, tabIconGap = 8,
              lineInset = 14, textAboveLine = 4;
}

TabStrip::TabStrip(const QList<PanelTab>& tabs, QWidget* parent) : QWidget(parent), m_tabs(tabs)
{
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setFixedHeight(stripHeight);
    setProperty("focusRadius", Radius::button);
    setCurrent(0);
}

void TabStrip::setClass(WindowClass windowClass)
{
    m_class = windowClass;
    setFixedHeight(windowClass == WindowClass::compact ? compactStripHeight : stripHeight);
    update();
}

void TabStrip::setCurrent(int index)
{
    if (index < 0 || index >= m_tabs.size())
        return;
    const bool moves = std::exchange(m_current, index) != index;
    setAccessibleName(m_tabs[index].text);
    if (moves && hasFocus())
        tellPart(this, QAccessible::Focus, index);
    update();
}

QRect TabStrip::tabRect(int index) const
{
    const auto edge = [this](int i) { return width() * i / int(m_tabs.size()); };
    return {edge(index), 0, edge(index + 1) - edge(index), height()};
}

int TabStrip::tabAt(QPoint position) const
{
    for (int i = 0; i < m_tabs.size(); ++i) {
        if (tabRect(i).contains(position))
            return i;
    }
    return -1;
}

void TabStrip::choose(int index)
{
    if (index < 0 || index >= m_tabs.size() || index == m_current)
        return;
    setCurrent(index);
    Q_EMIT chosen(index);
}

bool TabStrip::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
        m_hovered = tabAt(static_cast<QHoverEvent*>(event)->position().toPoint());
        update();
        break;
    case QEvent::HoverLeave:
        m_hovered = -1;
        update();
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

void TabStrip::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int i = 0; i < m_tabs.size(); ++i) {
        const QRectF box = tabRect(i);
        const bool chosen = i == m_current;
        const QColor ink = chosen || i == m_hovered ? theme.text : theme.text2;
        const Type type = chosen ? Type::heading : Type::bodyMedium;
        const double text = textWidth(type, m_tabs[i].text);
        const int textHeight = height() - textAboveLine;
        const int icon = m_class == WindowClass::compact ? 0 : tabIconSide + tabIconGap;
        const double left = box.center().x() - (icon + text) / 2;
        const QRectF line(left, 0, box.width(), textHeight);
        if (icon > 0)
            paintIcon(painter, m_tabs[i].icon, QRectF(left, 0, tabIconSide, textHeight),
                      tabIconSide, ink);
        paintText(painter, line.adjusted(icon, 0, 0, 0), Qt::AlignLeft, type, ink, m_tabs[i].text,
                  Qt::ElideNone);
        if (chosen)
            fillRounded(
                painter,
                QRectF(box.left() + lineInset, height() - 2, box.width() - 2 * lineInset, 2), 1,
                theme.accentLine);
    }
}

void TabStrip::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        choose(tabAt(event->position().toPoint()));
}

void TabStrip::keyPressEvent(QKeyEvent* event)
{
    if (const auto index = choiceByKey(event->key(), m_current, choiceCount()))
        choose(*index);
    else
        QWidget::keyPressEvent(event);
}

void TabStrip::focusInEvent(QFocusEvent* event)
{
    KeyboardFocus::entered(this, event);
}

void TabStrip::focusOutEvent(QFocusEvent*)
{
    KeyboardFocus::left(this);
}
