#pragma once

#include <QByteArray>
#include <QHash>
#include <QHostAddress>
#include <QPointer>
#include <QString>
#include <QTcpServer>
#include <QTcpSocket>

#include <algorithm>
#include <functional>

// Serves files on this machine, from any byte on, and stops when and as a test says.
class FileServer : public QTcpServer {
public:
    enum class Stop { holdsConnection, closesConnection };

    FileServer()
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }

    QString address(const QString& name) const
    {
        return QStringLiteral("http://127.0.0.1:%1/%2").arg(serverPort()).arg(name);
    }
    // After so many more bytes of files nothing follows, until letGo().
    void stopAfter(qint64 bytes, Stop how)
    {
        m_left = bytes;
        m_how = how;
    }
    void letGo() { m_left = -1; }

    QHash<QByteArray, QByteArray> files;      // by name
    QHash<QByteArray, QByteArray> replies;    // whole replies, by name; they come first
    bool hasRanges = true;
    qint64 sent = 0;    // bytes of files
    int requests = 0;
    // Called for each request with the byte that it begins at.
    std::function<void(qint64 from)> asked = [](qint64) {};

private:
    void read(QTcpSocket* socket)
    {
        QByteArray& head = m_heads[socket];
        head += socket->readAll();
        if (!head.contains("\r\n\r\n"))
            return;
        ++requests;
        const QByteArray name = head.split(' ').value(1).mid(1);
        asked(rangeIn(head));
        answer(socket, name, hasRanges ? rangeIn(head) : 0);
        m_heads.remove(socket);
    }

    static qint64 rangeIn(const QByteArray& head)
    {
        const QByteArray key = "\r\nRange: bytes=";
        const qsizetype at = head.indexOf(key);
        return at < 0 ? 0 : head.mid(at + key.size()).split('-').first().toLongLong();
    }

    void answer(QTcpSocket* socket, const QByteArray& name, qint64 from)
    {
        if (replies.contains(name)) {
            socket->write(replies[name]);
            socket->disconnectFromHost();
            return;
        }
        const QByteArray file = files.value(name);
        const QByteArray size = QByteArray::number(file.size());
        const QByteArray status =
            from == 0 ? "200 OK\r\n"
                      : "206 Partial Content\r\nContent-Range: bytes " + QByteArray::number(from) +
                            '-' + QByteArray::number(file.size() - 1) + '/' + size + "\r\n";
        socket->write("HTTP/1.1 " + status +
                      "Content-Length: " + QByteArray::number(file.size() - from) + "\r\n\r\n");
        const qint64 wanted = file.size() - from;
        const qint64 count = m_left < 0 ? wanted : std::min(wanted, m_left);
        socket->write(file.mid(from, count));
        sent += count;
        if (m_left >= 0)
            m_left -= count;
        // After a whole file the connection stays open: Qt asks once more if it is closed before Qt
        // has begun to read.
        if (count < wanted && m_how == Stop::closesConnection)
            socket->disconnectFromHost();
    }

    QHash<QTcpSocket*, QByteArray> m_heads;
    qint64 m_left = -1;
    Stop m_how = Stop::closesConnection;
};
