#pragma once
#include "platform/SystemLock.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QUrl>

#include <memory>

class QLocalServer;
class QLocalSocket;

// One window per user. The first start holds a lock in the data folder; a later start sends the
// first what to open, over a socket, and ends.
struct InstanceClaim {
    enum class Outcome {
        first,
        handedOver,
        unanswered,
        unreachable,    // a first start runs, but there is no private place for a socket
    };
    Outcome outcome = Outcome::unanswered;
    // Held by the first start as long as it runs; null where no lock can be written, as on a full
    // disk.
    std::unique_ptr<SystemLock> lock;
};

// Waits some seconds at most for the first start's answer. Of several starts at one moment exactly
// one becomes the first. Needs a core application, but no display. `dataFolder` exists and belongs
// to the user.
InstanceClaim claimInstance(const QString& dataFolder, const QList<QUrl>& toOpen);

// The addresses that command-line arguments name: paths become file URLs, other addresses stay.
QList<QUrl> addressesOf(const QStringList& arguments);

// Listens in the first start, which holds the lock meanwhile.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    explicit SingleInstance(const QString& dataFolder, QObject* parent = nullptr);

Q_SIGNALS:
    // A later start sent these; empty when it was started without any.
    void handedOver(const QList<QUrl>& toOpen);

private:
    void greet(QLocalSocket* socket);
    void read(QLocalSocket* socket);

    QLocalServer* m_server;
    QHash<QLocalSocket*, QByteArray> m_received;
};
