#pragma once

#include "platform/Desktop.h"

#include <QDBusConnection>
#include <QDBusMessage>

class QDBusPendingCallWatcher;

// A desktop of Linux, over the session bus: preferences from the desktop portal
// (org.freedesktop.portal.Settings), notices through org.freedesktop.Notifications. What the bus
// does not offer is as in Desktop.
class DesktopPortal : public Desktop {
    Q_OBJECT
public:
    explicit DesktopPortal(const QDBusConnection& bus);    // asks for the preferences

    void notify(const DesktopNotice& notice) override;
    // Waits for the answer, but only as long as a start-up can: a portal that the bus has to start
    // for it may miss the moment.
    static bool offersFileDialogs(const QDBusConnection& bus);

private Q_SLOTS:
    void takeChange(const QDBusMessage& change);
    void keepToken(uint notice, const QString& token);
    void press(uint notice, const QString& action);

private:
    void ask();
    void take(const QString& group, const QString& key, const QVariant& told);
    void takeAll(QDBusPendingCallWatcher* reply);
    void show();

    QDBusConnection m_bus;
    // What the portal told: of the appearance, and of GNOME's switch for animations.
    ColorScheme m_scheme = ColorScheme::unknown;    // until the portal, or the bus for it, answers
    bool m_asksForLessMotion = false, m_hasAnimations = true;
    uint m_notice = 0;     // number of the notice shown last; 0: none
    QByteArray m_token;    // arrives before the press that it belongs to
};
