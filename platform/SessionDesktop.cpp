#include "platform/SessionDesktop.h"

#if defined(Q_OS_LINUX)
#include "platform/DesktopPortal.h"
#endif

bool desktopOffersFileDialogs()
{
#if defined(Q_OS_LINUX)
    // A connection of its own: Qt keeps the usual one beyond the end of the application object.
    const QString name = QStringLiteral("moltiva-question");
    const bool offers = DesktopPortal::offersFileDialogs(
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, name));
    QDBusConnection::disconnectFromBus(name);
    return offers;
#else
    return false;
#endif
}

std::unique_ptr<Desktop> sessionDesktop()
{
#if defined(Q_OS_LINUX)
    if (const QDBusConnection bus = QDBusConnection::sessionBus(); bus.isConnected())
        return std::make_unique<DesktopPortal>(bus);
#endif
    return std::make_unique<Desktop>();
}
