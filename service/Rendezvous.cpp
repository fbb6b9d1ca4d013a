#include "service/Rendezvous.h"

#include <QLocalServer>
#include <QLocalSocket>

Rendezvous::Rendezvous(const QString& socketPath, const QByteArray& line, Patience patience,
                       QObject* parent)
    : QObject(parent), m_server(new QLocalServer(this)), m_line(line), m_after(patience.after)
{
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    // Removes a socket that a killed service has left. No live service can be using it, because
    // this one has the lock of the data folder.
    QLocalServer::removeServer(socketPath);
    m_server->listen(socketPath);
    connect(m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* socket = m_server->nextPendingConnection())
            greet(socket);
    });
    m_alone.setSingleShot(true);
    connect(&m_alone, &QTimer::timeout, this, &Rendezvous::unused);
    m_alone.start(patience.first);
}

bool Rendezvous::isListening() const
{
    return m_server->isListening();
}

void Rendezvous::close()
{
    m_server->close();
}

void Rendezvous::greet(QLocalSocket* socket)
{
    m_present.insert(socket);
    m_alone.stop();
    connect(socket, &QLocalSocket::readyRead, socket, [socket] { socket->readAll(); });
    connect(socket, &QLocalSocket::disconnected, this, [this, socket] { leave(socket); });
    socket->write(m_line);
    socket->flush();
    // Handles a socket that disconnected before its signal disconnected() was connected.
    if (socket->state() == QLocalSocket::UnconnectedState)
        leave(socket);
}

// Called by the signal of the socket and perhaps by greet(); the second call does nothing.
void Rendezvous::leave(QLocalSocket* socket)
{
    if (!m_present.remove(socket))
        return;
    socket->deleteLater();
    if (m_present.isEmpty())
        m_alone.start(m_after);
}
