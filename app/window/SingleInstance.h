#pragma once
#include "platform/SystemLock.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QUrl>

#include <memory>

class QLocalServer;
class QLocalSocket;

// One window per user. The first start keeps a lock beside the data that it works on; a later one
// hands what it was to open to the first over a socket, and ends.
struct InstanceClaim {
    enum class Outcome {
        first,
        handedOver,
        unanswered,
        unreachable,    // there is a first one, but no place for a socket that is the user's alone
    };
    Outcome outcome = Outcome::unanswered;
    // Of the first, as long as it runs; none where it cannot be had, on a full disk for instance.
    std::unique_ptr<SystemLock> lock;
};

// Waits for an answer for some seconds at most; starts at the same moment settle it between them.
// Needs a core application, but no display. `dataFolder` exists and is the user's own.
InstanceClaim claimInstance(const QString& dataFolder, const QList<QUrl>& toOpen);

// What the arguments of a start name: files and folders by path, other addresses as they are.
QList<QUrl> addressesOf(const QStringList& arguments);

// The listening side, in the first start, which holds the lock meanwhile.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    explicit SingleInstance(const QString& dataFolder, QObject* parent = nullptr);

Q_SIGNALS:
    // A later start handed these over; none when it was started without any.
    void handedOver(const QList<QUrl>& toOpen);

private:
    void greet(QLocalSocket* socket);
    void read(QLocalSocket* socket);

    QLocalServer* m_server;
    QHash<QLocalSocket*, QByteArray> m_received;
};
