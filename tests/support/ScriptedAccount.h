#pragma once

#include "account/AccountAPI.h"
#include "account/AccountSession.h"
#include "account/CreditJournal.h"

#include <QHash>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

enum class Scripted { signedIn, signedOut };

// An account service on this machine with scripted answers, and a session that uses it. For tests,
// screenshots and measurements that need a signed-in user.
class ScriptedAccount : public QObject {
    Q_OBJECT
public:
    ScriptedAccount(PreferencesStore& preferences, Scripted state);

    AccountSession& session() { return m_session; }
    CreditJournal& journal() { return m_journal; }
    AccountAPI& api() { return m_api; }
    QString address() const { return m_address; }    // of the scripted service
    // Sets the answer to a request, such as "POST /api/auth/login", with any query or with the one
    // that is given. All other requests get status 404.
    void answer(const QByteArray& request, const QByteArray& json, int status = 200);
    static QByteArray summary(const QByteArray& fullName = "Lucía Ferrer", qint64 balance = 4280);
    // Holds back the answers to requests that begin with `requests`, until release() or drop().
    void hold(const QByteArray& requests = {});
    void release();
    void drop();    // closes the held connections without an answer

    const QList<QByteArray>& log() const { return m_log; }    // "POST /api/auth/login {…}"
    // The addresses that the session has asked the browser to open.
    const QList<QUrl>& opened() const { return m_opened; }

private:
    void read(QTcpSocket* socket);
    void reply(QTcpSocket* socket, const QByteArray& request);
    ServiceConfiguration listening();

    struct Answer {
        int status = 404;
        QByteArray json = R"({"error":"not_found"})";
    };
    QTcpServer m_server;
    QString m_address;
    QHash<QByteArray, Answer> m_answers;
    QList<QByteArray> m_log;
    QList<QUrl> m_opened;
    std::optional<QByteArray> m_holding;
    QList<std::pair<QPointer<QTcpSocket>, QByteArray>> m_held;
    AccountAPI m_api;
    AccountSession m_session;
    QTemporaryDir m_runs;
    CreditJournal m_journal;
};
