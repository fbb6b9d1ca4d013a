#pragma once

#include <QObject>
#include <QVariant>

#include <functional>

// Names of the notifications of the program, and what is posted with each.
namespace Notification {
inline const QString undoRequested = QStringLiteral("moltivaUndoRequested");          // nothing
inline const QString redoRequested = QStringLiteral("moltivaRedoRequested");          // nothing
inline const QString deepLinkReceived = QStringLiteral("moltivaDeepLinkReceived");    // QUrl
// GoogleAuthenticationResult
inline const QString googleAuthenticationFinished =
    QStringLiteral("moltivaGoogleAuthenticationFinished");
}    // namespace Notification

// Passes notifications, by name, from whoever posts them to all who subscribed to that name, so
// that neither needs to know the other. Used on the interface thread.
class NotificationCenter : public QObject {
    Q_OBJECT
public:
    using Take = std::function<void(const QVariant& object)>;

    // Calls the subscribers in the order in which they subscribed, and returns after the last one.
    void post(const QString& name, const QVariant& object = {});
    // Calls `take` for each notification `name` as long as `subscriber` exists.
    void subscribe(const QString& name, QObject* subscriber, const Take& take);

Q_SIGNALS:
    void posted(const QString& name, const QVariant& object);
};

// The one notification centre of the process.
NotificationCenter& notificationCenter();
