#include "app/SingleInstance.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QIODevice>
#include <QLocalServer>
#include <QLocalSocket>
#include <QThread>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

constexpr int instanceLongestWait = 10000, retryPause = 40;    // ms
constexpr qsizetype longestMessage = 16 << 20;    // a folder's worth of paths many times over
const QByteArray answer = "1";

QString lockPath(const QString& folder)
{
    return QDir(folder).filePath(u"moltiva.lock"_s);
}

// Its own for each place of data: the socket belongs to who holds the lock there.
QString socketPath(const InstanceFolders& folders)
{
    const QByteArray place = QCryptographicHash::hash(QDir(folders.data).canonicalPath().toUtf8(),
                                                      QCryptographicHash::Sha1);
    return QDir(folders.runtime)
        .filePath(u"moltiva-%1.socket"_s.arg(QString::fromLatin1(place.toHex().left(8))));
}

bool handOver(const InstanceFolders& folders, const QList<QUrl>& toOpen)
{
    QLocalSocket socket;
    socket.connectToServer(socketPath(folders));
    if (!socket.waitForConnected(retryPause))
        return false;
    QByteArray message;
    QDataStream writer(&message, QIODevice::WriteOnly);
    writer << toOpen;
    QDataStream stream(&socket);
    stream << message;
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(instanceLongestWait))
            return false;
    }
    return socket.waitForReadyRead(instanceLongestWait) && socket.readAll() == answer;
}

}    // namespace

InstanceClaim claimInstance(const InstanceFolders& folders, const QList<QUrl>& toOpen)
{
    auto lock = std::make_unique<QLockFile>(lockPath(folders.data));
    lock->setStaleLockTime(0);    // held as long as its process lives
    QElapsedTimer watch;
    for (watch.start(); watch.elapsed() < instanceLongestWait; QThread::msleep(retryPause)) {
        if (lock->tryLock(0))
            return {InstanceClaim::Outcome::first, std::move(lock)};
        if (handOver(folders, toOpen))
            return {InstanceClaim::Outcome::handedOver, nullptr};
        // No lock can be written, on a full disk for instance: better a second window than none.
        if (lock->error() != QLockFile::LockFailedError)
            return {InstanceClaim::Outcome::first, nullptr};
    }
    return {};
}

QList<QUrl> addressesOf(const QStringList& arguments)
{
    QList<QUrl> addresses;
    for (const QString& argument : arguments) {
        const QFileInfo file(argument);
        const QUrl address(argument, QUrl::StrictMode);
        const bool isAddress = !file.exists() && address.isValid() && address.scheme().size() > 1;
        addresses.append(isAddress ? address : QUrl::fromLocalFile(file.absoluteFilePath()));
    }
    return addresses;
}

SingleInstance::SingleInstance(InstanceClaim claim, const InstanceFolders& folders, QObject* parent)
    : QObject(parent), m_claim(std::move(claim)), m_server(new QLocalServer(this))
{
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    QLocalServer::removeServer(socketPath(folders));    // of one that was killed: we hold the lock
    m_server->listen(socketPath(folders));
    connect(m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* socket = m_server->nextPendingConnection())
            greet(socket);
    });
}

void SingleInstance::greet(QLocalSocket* socket)
{
    connect(socket, &QLocalSocket::readyRead, this, [this, socket] { read(socket); });
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QObject::destroyed, this, [this, socket] { m_received.remove(socket); });
    QTimer::singleShot(instanceLongestWait, socket, [socket] { socket->abort(); });
    read(socket);
}

void SingleInstance::read(QLocalSocket* socket)
{
    QByteArray& received = m_received[socket];
    received += socket->read(longestMessage + 1 - received.size());
    if (received.size() > longestMessage) {
        socket->abort();
        return;
    }
    QDataStream stream(received);
    QByteArray message;
    stream.startTransaction();
    stream >> message;
    if (!stream.commitTransaction())
        return;    // more is to come
    QList<QUrl> toOpen;
    QDataStream reader(message);
    reader >> toOpen;
    received.clear();
    socket->write(answer);
    socket->disconnectFromServer();
    Q_EMIT handedOver(toOpen);
}
