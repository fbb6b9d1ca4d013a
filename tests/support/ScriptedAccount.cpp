#include "tests/support/ScriptedAccount.h"

ScriptedAccount::ScriptedAccount(PreferencesStore& preferences, Scripted state)
    : m_api(listening(), preferences),
      m_session(m_api, {.openInBrowser =
                            [this](const QUrl& url) {
                                m_opened.append(url);
                                return true;
                            },
                        .startLimit = std::chrono::minutes(10)}),    // longer than any hold()
      m_journal(m_session, preferences, m_runs.path())
{
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = m_server.nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    });
    if (state == Scripted::signedIn)
        answer("GET /api/auth/me", summary());
    else
        answer("GET /api/auth/me", R"({"error":"unauthorized"})", 401);
    answer("GET /api/publicaciones/config",
           R"({"enabled":true,"providerLabel":"","costCredits":10})");
}

ServiceConfiguration ScriptedAccount::listening()
{
    m_server.listen(QHostAddress::LocalHost);
    m_address = QStringLiteral("http://127.0.0.1:%1").arg(m_server.serverPort());
    const QUrl url(m_address);
    return {.service = url,
            .site = url,
            .siteName = QStringLiteral("localhost"),
            .administratorEmail = {},
            .problem = {}};
}

void ScriptedAccount::answer(const QByteArray& request, const QByteArray& json, int status)
{
    m_answers.insert(request, {status, json});
}

QByteArray ScriptedAccount::summary(const QByteArray& fullName, qint64 balance)
{
    return R"({"balance":)" + QByteArray::number(balance) +
           R"(,"profile":{"id":"1","email":"lucia@casaliebana.es","fullName":")" + fullName +
           R"("}})";
}

void ScriptedAccount::hold(const QByteArray& requests)
{
    m_holding = requests;
}

void ScriptedAccount::release()
{
    m_holding.reset();
    for (const auto& [socket, request] : std::exchange(m_held, {})) {
        if (socket)
            reply(socket, request);
    }
}

void ScriptedAccount::drop()
{
    m_holding.reset();
    for (const auto& [socket, request] : std::exchange(m_held, {})) {
        if (socket)
            socket->abort();
    }
}

void ScriptedAccount::read(QTcpSocket* socket)
{
    const QByteArray bytes = socket->peek(socket->bytesAvailable());
    const auto end = bytes.indexOf("\r\n\r\n");
    if (end < 0)
        return;
    qsizetype length = 0;
    for (const QByteArray& line : bytes.left(end).toLower().split('\n')) {
        if (line.startsWith("content-length:"))
            length = line.mid(15).trimmed().toLongLong();
    }
    if (bytes.size() < end + 4 + length)
        return;
    socket->readAll();
    const QByteArray request = bytes.left(bytes.indexOf(" HTTP/"));
    m_log.append((request + ' ' + bytes.mid(end + 4)).trimmed());
    if (m_holding && request.startsWith(*m_holding))
        m_held.append({socket, request});
    else
        reply(socket, request);
}

void ScriptedAccount::reply(QTcpSocket* socket, const QByteArray& request)
{
    const QByteArray path = request.split('?').first();
    const Answer answer = m_answers.value(m_answers.contains(request) ? request : path);
    // Sends no session cookie with a refused request or with one that needs no account, like the
    // service.
    const bool opensSession = answer.status == 200 && request.contains(" /api/auth/");
    socket->write("HTTP/1.1 " + QByteArray::number(answer.status) +
                  " Answer\r\nContent-Type: application/json\r\nConnection: close\r\n" +
                  (opensSession ? "Set-Cookie: tallerio_session=scripted; Path=/\r\n" : "") +
                  "Content-Length: " + QByteArray::number(answer.json.size()) + "\r\n\r\n" +
                  answer.json);
    socket->disconnectFromHost();
}
