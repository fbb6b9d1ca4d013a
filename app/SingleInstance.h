#pragma once
#include <QHash>
#include <QList>
#include <QLockFile>
#include <QObject>
#include <QUrl>

#include <memory>

class QLocalServer;
class QLocalSocket;

// One window per user. The first start keeps a lock beside the data that it works on; a later one
// hands what it was to open to the first over a socket, and ends.
struct InstanceClaim {
    enum class Outcome { first, handedOver, unanswered };
    Outcome outcome = Outcome::unanswered;
    std::unique_ptr<QLockFile> lock;    // of the first
};

// Waits for an answer for some seconds at most; starts at the same moment settle it between them.
// Needs a core application, but no display.
struct InstanceFolders {
    QString data, runtime;    // of the lock, of the socket; both the user's own
};
InstanceClaim claimInstance(const InstanceFolders& folders, const QList<QUrl>& toOpen);

// What the arguments of a start name: files and folders by path, other addresses as they are.
QList<QUrl> addressesOf(const QStringList& arguments);

// The listening side, in the first start.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    SingleInstance(InstanceClaim claim, const InstanceFolders& folders, QObject* parent = nullptr);

Q_SIGNALS:
    // A later start handed these over; none when it was started without any.
    void handedOver(const QList<QUrl>& toOpen);

private:
    void greet(QLocalSocket* socket);
    void read(QLocalSocket* socket);

    InstanceClaim m_claim;
    QLocalServer* m_server;
    QHash<QLocalSocket*, QByteArray> m_received;
};
