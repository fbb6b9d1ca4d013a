#pragma once

#include "account/ServiceConfiguration.h"

#include <QByteArray>
#include <QHostAddress>
#include <QList>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>

#include <functional>
#include <utility>

// An HTTP server that gives the answers a test sets, and records the requests.
class ScriptedServer : public QTcpServer {
public:
    struct Request {
        QByteArray method, target, head, body;
        // The value of the header `name`; empty if there is none.
        QByteArray header(const QByteArray& name) const
        {
            for (const QByteArray& line : head.split('\n')) {
                const qsizetype colon = line.indexOf(':');
                if (line.left(colon).trimmed().compare(name, Qt::CaseInsensitive) == 0)
                    return line.mid(colon + 1).trimmed();
            }
            return {};
        }
    };
    // Returns the whole reply; the connection is closed after it.
    using Answer = std::function<QByteArray(const Request&)>;

    explicit ScriptedServer(Answer answer = {}) : m_answer(std::move(answer))
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, &ScriptedServer::greet);
    }

    QUrl url() const { return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(serverPort())); }
    ServiceConfiguration configuration() const
    {
        return {.service = url(),
                .site = url(),
                .siteName = QStringLiteral("Ejemplo.es"),
                .administratorEmail = QStringLiteral("jefa@ejemplo.es"),
                .problem = {}};
    }
    void setAnswer(Answer answer) { m_answer = std::move(answer); }
    void answerNothing() { m_isSilent = true; }
    // Leaves requests for `target` unanswered until release().
    void hold(const QByteArray& target) { m_heldTarget = target; }
    void release()
    {
        m_heldTarget.clear();
        for (const auto& [socket, request] : std::exchange(m_held, {})) {
            if (socket)
                answer(socket, request);
        }
    }

    QList<Request> requests;

    static QByteArray reply(int status, const QByteArray& body, const QByteArray& headers = {})
    {
        return "HTTP/1.1 " + QByteArray::number(status) + " X\r\n" + headers +
               "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
    }

private:
    void greet()
    {
        while (QTcpSocket* socket = nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    }

    void read(QTcpSocket* socket)
    {
        const QByteArray received = socket->peek(socket->bytesAvailable());
        const qsizetype end = received.indexOf("\r\n\r\n");
        if (end < 0)
            return;
        Request request;
        request.head = received.left(end);
        request.body = received.mid(end + 4);
        if (request.body.size() < request.header("Content-Length").toLongLong())
            return;
        socket->readAll();
        const QList<QByteArray> line = request.head.left(request.head.indexOf('\r')).split(' ');
        request.method = line.value(0);
        request.target = line.value(1);
        requests.append(request);
        if (request.target == m_heldTarget)
            m_held.append({socket, request});
        else
            answer(socket, request);
    }

    void answer(QTcpSocket* socket, const Request& request)
    {
        if (m_isSilent || !m_answer)
            return;
        socket->write(m_answer(request));
        socket->disconnectFromHost();
    }

    Answer m_answer;
    bool m_isSilent = false;
    QByteArray m_heldTarget;
    QList<std::pair<QPointer<QTcpSocket>, Request>> m_held;
};
