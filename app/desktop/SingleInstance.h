#pragma once
#include "platform/SystemLock.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QUrl>

#include <memory>

class QLocalServer;
class QLocalSocket;

// What a start of the program asks for.
struct OpenRequest {
    QList<QUrl> toOpen = {};            // empty: only the window
    QByteArray activationToken = {};    // lets the window come to the front; may be empty
};

// Tells whether this process may show a window: only one process per user does. The first process
// holds a lock in the data folder. A later process sends the first, over a socket, what to open,
// and ends.
struct InstanceClaim {
    enum class Outcome {
        first,
        handedOver,
        unanswered,
        unreachable,    // the first process runs, but no usable path for a socket exists
    };
    Outcome outcome = Outcome::unanswered;
    // Set only for Outcome::first: the process keeps the lock as long as it runs. Null even then if
    // the lock file cannot be made, for example on a full disk.
    std::unique_ptr<SystemLock> lock;
};

// Makes this process the first, or sends `request` to the first and waits some seconds for its
// answer. Of several processes that start at the same moment, exactly one becomes the first. Needs
// a QCoreApplication, but no display. `dataFolder` exists and belongs to the user.
InstanceClaim claimInstance(const QString& dataFolder, const OpenRequest& request);

// Turns command-line arguments into URLs: paths become file URLs, and URLs stay as they are.
QList<QUrl> addressesOf(const QStringList& arguments);

// Receives what later processes send. Made by the first process, which holds the lock as long as
// this object exists.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    explicit SingleInstance(const QString& dataFolder, QObject* parent = nullptr);

Q_SIGNALS:
    void handedOver(const OpenRequest& request);    // a later process was started

private:
    void greet(QLocalSocket* socket);
    void read(QLocalSocket* socket);

    QLocalServer* m_server;
    QHash<QLocalSocket*, QByteArray> m_received;
};
