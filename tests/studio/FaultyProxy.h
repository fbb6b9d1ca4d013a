#pragma once

#include <QHostAddress>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QUrl>

#include <chrono>

enum class Fault {
    none,
    noConnection,
    resetBefore,    // the connection breaks; the service never gets the request
    resetAfter,     // the connection breaks after the service has acted on the request
    errorBefore,    // status 500; the service never gets the request
    errorAfter,
    signedOutBefore,    // status 401; the service never gets the request
    signedOutAfter,
    lateAnswer,     // the client gets the service's answer after `delay`
    lateRequest,    // the service gets the request after `delay`; the client gets no answer in time
};

// Passes requests to a service, but applies a fault to those for one target.
class FaultyProxy : public QTcpServer {
public:
    explicit FaultyProxy(int servicePort) : m_servicePort(servicePort)
    {
        listen(QHostAddress::LocalHost);
        m_port = serverPort();
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }
    QUrl url() const { return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(m_port)); }
    void spoil(const QByteArray& target, Fault fault)
    {
        m_target = target;
        m_fault = fault;
    }
    // Ends the fault. After Fault::noConnection, whose first request closed the proxy, listens
    // again.
    void heal()
    {
        m_fault = Fault::none;
        if (!isListening())
            listen(QHostAddress::LocalHost, m_port);
    }
    int spoiled() const { return m_spoiled; }

    static constexpr std::chrono::milliseconds delay{600};

private:
    void read(QTcpSocket* socket)
    {
        const QByteArray received = socket->peek(socket->bytesAvailable());
        const qsizetype end = received.indexOf("\r\n\r\n");
        if (end < 0 || received.size() < end + 4 + lengthIn(received.left(end)))
            return;
        socket->readAll();
        const bool isSpoiled = m_fault != Fault::none && received.contains(m_target + " HTTP");
        const Fault fault = isSpoiled ? m_fault : Fault::none;
        m_spoiled += isSpoiled;
        switch (fault) {
        case Fault::noConnection:
            close();
            return socket->abort();
        case Fault::resetBefore:
            return socket->abort();
        case Fault::errorBefore:
            return answer(socket, reply("500 Internal Server Error"));
        case Fault::signedOutBefore:
            return answer(socket, reply("401 Unauthorized"));
        case Fault::lateRequest:
            QTimer::singleShot(delay, this, [this, received, client = QPointer(socket)] {
                forward(received, client, Fault::none);
            });
            return;
        default:
            forward(received, socket, fault);
        }
    }

    void forward(QByteArray request, const QPointer<QTcpSocket>& client, Fault fault)
    {
        request.replace("Connection: Keep-Alive", "Connection: close");
        // Replaces the proxy's address, because the service accepts only its own as host.
        request.replace(url().authority().toUtf8(),
                        "127.0.0.1:" + QByteArray::number(m_servicePort));
        auto* service = new QTcpSocket(this);
        connect(service, &QTcpSocket::disconnected, this, [this, service, client, fault] {
            const QByteArray given = service->readAll();
            service->deleteLater();
            if (client)
                passOn(given, client, fault);
        });
        service->connectToHost(QHostAddress::LocalHost, quint16(m_servicePort));
        service->write(request);
    }

    void passOn(const QByteArray& given, const QPointer<QTcpSocket>& client, Fault fault)
    {
        if (fault == Fault::resetAfter)
            return client->abort();
        if (fault == Fault::errorAfter)
            return answer(client, reply("500 Internal Server Error"));
        if (fault == Fault::signedOutAfter)
            return answer(client, reply("401 Unauthorized"));
        if (fault != Fault::lateAnswer)
            return answer(client, given);
        QTimer::singleShot(delay, this, [given, client] {
            if (client)
                answer(client, given);
        });
    }

    static void answer(QTcpSocket* socket, const QByteArray& bytes)
    {
        socket->write(bytes);
        socket->disconnectFromHost();
    }
    static QByteArray reply(const QByteArray& status)
    {
        return "HTTP/1.1 " + status + "\r\nContent-Length: 2\r\nConnection: close\r\n\r\n{}";
    }
    static qsizetype lengthIn(const QByteArray& head)
    {
        const qsizetype at = head.toLower().indexOf("content-length:");
        return at < 0 ? 0 : head.mid(at + 15, head.indexOf('\r', at) - at - 15).trimmed().toInt();
    }

    int m_servicePort, m_spoiled = 0;
    quint16 m_port = 0;
    QByteArray m_target;
    Fault m_fault = Fault::none;
};
