#include "app/controls/popovers/Popover.h"

#include "app/controls/AccessibleRole.h"
#include "app/controls/popovers/FocusRound.h"
#include "app/controls/popovers/KeptClear.h"
#include "app/theme/Painting.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>

#include <optional>

namespace {
constexpr int shadowRoom = 28, popoverGap = 6, popoverWindowMargin = 8;
}

Popover::Popover(QWidget* owner) : QWidget(owner->window()), m_owner(owner)
{
    setAccessibleRole(this, QAccessible::Dialog);
    setAttribute(Qt::WA_DeleteOnClose);
    hide();
    connect(owner, &QObject::destroyed, this, [this] {
        disconnect();    // no signal may reach an owner that is being destroyed
        close();
    });
}

void Popover::open(QSize content)
{
    m_before = window()->focusWidget();
    resizeContent(content);
    show();
    raise();
    qApp->installEventFilter(this);
}

void Popover::openWithin(QSize content, int leastHeight)
{
    constexpr int step = 32;
    const QSize paddings(2 * padding, 2 * padding);
    QSize fitting = content;
    while (fitting.height() > leastHeight && bestPlace(fitting + paddings).covers > 0)
        fitting.rheight() -= step;
    open(bestPlace(fitting + paddings).covers > 0 ? content : fitting);
}

void Popover::resizeContent(QSize content)
{
    const int room = 2 * (shadowRoom + padding);
    resize(content + QSize(room, room));
    place();
}

QSize Popover::largestContent() const
{
    const int top = m_owner->mapTo(window(), QPoint(0, m_owner->height())).y() + popoverGap;
    return QSize(window()->width() - popoverWindowMargin, window()->height() - top) -
           QSize(popoverWindowMargin + 2 * padding, popoverWindowMargin + 2 * padding);
}

void Popover::takeFocus(QWidget* target, Qt::FocusReason reason)
{
    m_reason = reason;
    target->setFocus(reason);
}

QRect Popover::box() const
{
    return rect().adjusted(shadowRoom, shadowRoom, -shadowRoom, -shadowRoom);
}

QRect Popover::content() const
{
    return box().adjusted(padding, padding, -padding, -padding);
}

// Lists top left corners for the box, the preferred first: below the owner and above it, in reverse
// order if only above there is enough or more space; then left of the owner, level with it and just
// below and above each area in `clear`.
QList<QPoint> Popover::placesFor(QSize size, const QRect& bounds, const QList<QRect>& clear) const
{
    const QRect owner(m_owner->mapTo(window(), QPoint()), m_owner->size());
    const int below = bounds.bottom() - owner.bottom() - popoverGap;
    const int above = owner.top() - popoverGap - bounds.top();
    QList<QPoint> places{{owner.left(), owner.bottom() + 1 + popoverGap},
                         {owner.left(), owner.top() - popoverGap - size.height()}};
    if (below < size.height() && below < above)
        places.swapItemsAt(0, 1);
    const int beside = owner.left() - popoverGap - size.width();
    for (const QRect& area : clear) {
        places.append({beside, owner.center().y() - size.height() / 2});
        places.append({beside, area.bottom() + 1 + popoverGap});
        places.append({beside, area.top() - popoverGap - size.height()});
    }
    return places;
}

// Moves the positions of placesFor() inside the window and returns the one that covers least of the
// areas to keep clear; of several equal ones, the first.
Popover::Place Popover::bestPlace(QSize size) const
{
    const QRect bounds = window()->rect().adjusted(popoverWindowMargin, popoverWindowMargin,
                                                   -popoverWindowMargin, -popoverWindowMargin);
    const auto* keeper = dynamic_cast<const KeptClear*>(window());
    const QList<QRect> clear = keeper ? keeper->keptClear(m_owner) : QList<QRect>();
    std::optional<Place> best;
    for (const QPoint& wanted : placesFor(size, bounds, clear)) {
        QRect box(wanted, size);
        box.moveLeft(
            std::max(bounds.left(), std::min(box.left(), bounds.right() + 1 - box.width())));
        box.moveTop(
            std::max(bounds.top(), std::min(box.top(), bounds.bottom() + 1 - box.height())));
        Place place{box.topLeft()};
        for (const QRect& area : clear) {
            const QRect covered = area.intersected(box);
            place.covers += qint64(covered.width()) * covered.height();
        }
        if (!best || place.covers < best->covers)
            best = place;
    }
    return *best;
}

void Popover::place()
{
    move(bestPlace(box().size()).at - QPoint(shadowRoom, shadowRoom));
}

bool Popover::isOutside(const QObject* object) const
{
    const auto* widget = qobject_cast<const QWidget*>(object);
    return widget && widget->window() == window() && widget != this && !isAncestorOf(widget);
}

bool Popover::eventFilter(QObject* object, QEvent* event)
{
    if (isHidden())
        return false;
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::Wheel:
        // Leaves a press on the owner to the owner, whose click closes the popover. If the popover
        // closed here, that click would open it again.
        if (isOutside(object) && object != m_owner)
            close();
        break;
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
        if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape &&
            (isOutside(object) || isAncestorOf(qobject_cast<QWidget*>(object)))) {
            event->accept();
            if (event->type() == QEvent::KeyPress)
                close();
            return true;
        }
        break;
    case QEvent::Hide:
    case QEvent::EnabledChange:
        if (object == m_owner && (event->type() == QEvent::Hide || !m_owner->isEnabled()))
            close();
        break;
    case QEvent::Resize:
        if (object == window())
            close();
        break;
    default:
        break;
    }
    return false;
}

bool Popover::focusNextPrevChild(bool next)
{
    return moveFocusRound(this, next);
}

void Popover::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintShadow(painter, box(), {.offset = 8, .blur = shadowRoom - 8, .color = theme.shadow});
    fillRounded(painter, box(), Radius::popover, theme.elev);
    strokeRounded(painter, box(), Radius::popover, theme.line2);
}

// Does not ignore the press: ignored, it would reach the window below.
void Popover::mousePressEvent(QMouseEvent* event)
{
    if (!box().contains(event->position().toPoint()))
        close();
}

void Popover::wheelEvent(QWheelEvent* event)
{
    event->accept();
}

void Popover::closeEvent(QCloseEvent* event)
{
    qApp->removeEventFilter(this);
    Q_EMIT closing();
    QWidget* focus = window()->focusWidget();
    if (focus && isAncestorOf(focus)) {
        focus->clearFocus();
        if (m_before)
            m_before->setFocus(m_reason);
    }
    QWidget::closeEvent(event);
}
