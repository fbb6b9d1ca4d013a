#include "app/desktop/AppDelegate.h"

#include "app/desktop/LinkRegistration.h"
#include "app/desktop/LocalFile.h"
#include "app/desktop/ScreenCapture.h"
#include "app/desktop/WindowActivation.h"
#include "platform/NotificationCenter.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace {

// Posts the notification for Ctrl+Z or Ctrl+Shift+Z wherever the focus is, and consumes the key, so
// that no text field undoes on its own. key() does not depend on Caps Lock.
class KeyboardMonitor : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* object, QEvent* event) override
    {
        const bool isPress = event->type() == QEvent::KeyPress;
        if (!isPress && event->type() != QEvent::ShortcutOverride)
            return QObject::eventFilter(object, event);
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() != Qt::Key_Z || !(key->modifiers() & Qt::ControlModifier))
            return QObject::eventFilter(object, event);
        event->accept();    // of a ShortcutOverride: Qt then sends the key press, and no shortcut
        if (isPress)
            notificationCenter().post(key->modifiers() & Qt::ShiftModifier
                                          ? Notification::redoRequested
                                          : Notification::undoRequested);
        return true;
    }
};

}    // namespace

AppDelegate::AppDelegate(QWidget& window, LinkRegistration& links)
    : m_window(window), m_links(links)
{
    connect(qApp, &QCoreApplication::aboutToQuit, this, &AppDelegate::applicationWillTerminate);
}

void AppDelegate::applicationDidFinishLaunching()
{
    registerCurrentAppForDeepLinks();
    installKeyboardMonitor();
    activateApp();
}

void AppDelegate::applicationOpen(const QList<QUrl>& addresses, const QByteArray& activationToken)
{
    activateApp(activationToken);
    QList<QUrl> files;
    for (const QUrl& address : addresses) {
        if (const QUrl file = onThisMachine(address); file.isLocalFile())
            files.append(file);
        else
            notificationCenter().post(Notification::deepLinkReceived, address);
    }
    Q_EMIT filesReceived(files);
}

void AppDelegate::applicationWillTerminate()
{
    m_keyboardMonitor.reset();
}

void AppDelegate::registerCurrentAppForDeepLinks()
{
    m_links.registerCurrentApp();
}

void AppDelegate::installKeyboardMonitor()
{
    if (m_keyboardMonitor)
        return;
    m_keyboardMonitor = std::make_unique<KeyboardMonitor>();
    qApp->installEventFilter(m_keyboardMonitor.get());
}

void AppDelegate::activateApp(const QByteArray& activationToken)
{
    protectFromScreenCapture(m_window);
    comeForward(m_window, activationToken);
}
