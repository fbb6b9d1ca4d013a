#include "app/controls/KeyboardFocus.h"

#include <QFocusEvent>
#include <QFocusFrame>

namespace {

// One a window. Inside of a scroll area it moves there, to be clipped with its control.
QFocusFrame* frameOf(const QWidget* control)
{
    return control->window()->findChild<QFocusFrame*>();
}

}    // namespace

void KeyboardFocus::entered(QWidget* control, const QFocusEvent* event)
{
    const auto reason = event->reason();
    if (reason != Qt::TabFocusReason && reason != Qt::BacktabFocusReason &&
        reason != Qt::ShortcutFocusReason)
        return;
    QFocusFrame* frame = frameOf(control);
    if (!frame)
        frame = new QFocusFrame(control->window());
    frame->setWidget(control);
}

void KeyboardFocus::left(QWidget* control)
{
    if (QFocusFrame* frame = frameOf(control); frame && frame->widget() == control)
        frame->setWidget(nullptr);
}
