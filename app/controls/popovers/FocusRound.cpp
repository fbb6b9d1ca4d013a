#include "app/controls/popovers/FocusRound.h"

#include "app/controls/Button.h"

#include <QKeyEvent>

bool moveFocusRound(QWidget* area, bool next)
{
    QList<QWidget*> stops;
    for (QWidget* widget = area->nextInFocusChain(); widget != area;
         widget = widget->nextInFocusChain()) {
        if (area->isAncestorOf(widget) && widget->isVisibleTo(area) && widget->isEnabled() &&
            widget->focusPolicy() & Qt::TabFocus)
            stops.append(widget);
    }
    if (stops.isEmpty())
        return false;
    const auto at = stops.indexOf(area->window()->focusWidget());
    const auto count = stops.size();
    const auto target = at < 0 ? (next ? 0 : count - 1) : (at + (next ? 1 : count - 1)) % count;
    stops[target]->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

bool pressFocused(const QKeyEvent* event, const QWidget* area)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        return false;
    auto* button = qobject_cast<QAbstractButton*>(area->window()->focusWidget());
    if (!button || !area->isAncestorOf(button) || !button->isEnabled() || event->isAutoRepeat())
        return false;
    if (const auto* push = qobject_cast<PushButton*>(button); push && push->isWorking())
        return true;
    button->click();
    return true;
}
