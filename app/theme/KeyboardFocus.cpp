#include "app/theme/KeyboardFocus.h"

#include <QApplication>
#include <QFocusEvent>
#include <QFocusFrame>

namespace {

constexpr const char* byKey = "lastInputIsKey";    // dynamic property of the application

class InputWatch : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* object, QEvent* event) override
    {
        const QEvent::Type type = event->type();
        const bool isKey = type == QEvent::KeyPress || type == QEvent::ShortcutOverride;
        const bool isMouse = type == QEvent::MouseButtonPress || type == QEvent::MouseButtonRelease;
        if ((isKey || isMouse) && isKey != m_wasKey) {
            m_wasKey = isKey;
            qApp->setProperty(byKey, isKey);
        }
        return QObject::eventFilter(object, event);
    }

private:
    bool m_wasKey = false;
};

// The focus ring of the control's window; null until it is first needed. For a control inside a
// scroll area, Qt makes the ring a child of that area, which clips both.
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

Qt::FocusReason KeyboardFocus::reason()
{
    return qApp->property(byKey).toBool() ? Qt::TabFocusReason : Qt::OtherFocusReason;
}

void KeyboardFocus::watch(QApplication& application)
{
    application.installEventFilter(new InputWatch(&application));
}
