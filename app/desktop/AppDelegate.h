#pragma once

#include <QList>
#include <QObject>
#include <QUrl>

#include <memory>

class LinkRegistration;
class QWidget;

// What ties the running program to its desktop: links and files that it is asked to open, the keys
// for undo and redo, and its window coming to the front.
class AppDelegate : public QObject {
    Q_OBJECT
public:
    // Both outlive the delegate.
    AppDelegate(QWidget& window, LinkRegistration& links);

    // Call once, when the window is shown.
    void applicationDidFinishLaunching();
    // Opens what another program asked for. `activationToken`: with which the desktop allows the
    // window to come to the front; may be empty.
    void applicationOpen(const QList<QUrl>& addresses, const QByteArray& activationToken = {});
    void applicationWillTerminate();

Q_SIGNALS:
    // Links are posted as notifications instead.
    void filesReceived(const QList<QUrl>& files);

private:
    void registerCurrentAppForDeepLinks();
    void installKeyboardMonitor();
    void activateApp(const QByteArray& activationToken = {});

    QWidget& m_window;
    LinkRegistration& m_links;
    std::unique_ptr<QObject> m_keyboardMonitor;    // while installed
};
