#include "app/desktop/SingleInstance.h"

#include "platform/PrivateSocket.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QIODevice>
#include <QLocalServer>
#include <QLocalSocket>
#include <QRegularExpression>
#include <QThread>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

constexpr int instanceLongestWait = 10000, retryPause = 40;    // ms
constexpr qsizetype longestMessage = 16 << 20;    // bytes; a folder's file paths need far less
const QByteArray answer = "1";

QString lockPath(const QString& folder)
{
    return QDir(folder).filePath(u"moltiva.lock"_s);
}

// Path of the socket on which the first process for `dataFolder` listens. Empty if there is no
// usable path.
QString socketPath(const QString& dataFolder)
{
    const QString folder = QDir(dataFolder).canonicalPath();
    const QByteArray place = QCryptographicHash::hash(folder.toUtf8(), QCryptographicHash::Sha1);
    return privateSocketPath(u"moltiva-%1.socket"_s.arg(QString::fromLatin1(place.toHex().left(8))),
                             folder);
}

bool handOver(const QString& path, const OpenRequest& request)
{
    QLocalSocket socket;
    socket.connectToServer(path);
    if (!socket.waitForConnected(retryPause) || !leadsToOwnUser(socket))
        return false;
    QByteArray message;
    QDataStream writer(&message, QIODevice::WriteOnly);
    writer << request.toOpen << request.activationToken;
    QDataStream stream(&socket);
    stream << message;
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(instanceLongestWait))
            return false;
    }
    return socket.waitForReadyRead(instanceLongestWait) && socket.readAll() == answer;
}

}    // namespace

InstanceClaim claimInstance(const QString& dataFolder, const OpenRequest& request)
{
    using enum InstanceClaim::Outcome;
    const QString socket = socketPath(dataFolder);
    QElapsedTimer watch;
    for (watch.start(); watch.elapsed() < instanceLongestWait; QThread::msleep(retryPause)) {
        auto lock = std::make_unique<SystemLock>(lockPath(dataFolder));
        if (lock->isOurs())
            return {first, std::move(lock)};
        if (!socket.isEmpty() && handOver(socket, request))
            return {handedOver, nullptr};
        // The lock file cannot be made, for example on a full disk. A second window is better than
        // none.
        if (lock->state() == SystemLock::State::impossible)
            return {first, nullptr};
        if (socket.isEmpty())
            return {unreachable, nullptr};
    }
    return {};
}

QList<QUrl> addressesOf(const QStringList& arguments)
{
    static const QRegularExpression scheme(u"^[A-Za-z][A-Za-z0-9+.-]+:"_s);
    QList<QUrl> addresses;
    for (const QString& argument : arguments) {
        const QFileInfo file(argument);
        const bool isAddress = !file.exists() && scheme.match(argument).hasMatch();
        addresses.append(isAddress ? QUrl(argument, QUrl::TolerantMode)
                                   : QUrl::fromLocalFile(file.absoluteFilePath()));
    }
    return addresses;
}

SingleInstance::SingleInstance(const QString& dataFolder, QObject* parent)
    : QObject(parent), m_server(new QLocalServer(this))
{
    const QString path = socketPath(dataFolder);
    if (path.isEmpty())
        return;    // later processes get Outcome::unreachable
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    QLocalServer::removeServer(path);    // a killed process may have left its socket behind
    m_server->listen(path);
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
        return;    // incomplete: the rest is still on its way
    OpenRequest request;
    QDataStream reader(message);
    reader >> request.toOpen >> request.activationToken;
    received.clear();
    socket->write(answer);
    socket->disconnectFromServer();
    Q_EMIT handedOver(request);
}
