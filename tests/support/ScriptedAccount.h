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

// An account service on this machine that answers as it is told, and the session over it. For
// tests, pictures and figures, which need somebody signed in.
class ScriptedAccount : public QObject {
    Q_OBJECT
public:
    ScriptedAccount(PreferencesStore& preferences, Scripted state);

    AccountSession& session() { return m_session; }
    CreditJournal& journal() { return m_journal; }
    QString address() const { return m_address; }    // for other programs
    // For one path, "POST /api/auth/login"; what nothing was said about is not found.
    void answer(const QByteArray& request, const QByteArray& json, int status = 200);
    static QByteArray summary(const QByteArray& fullName = "Lucía Ferrer", qint64 balance = 4280);
    // Requests that begin so wait meanwhile.
    void hold(const QByteArray& requests = {});
    void release();
    void drop();    // those that wait: there is no answer

    const QList<QByteArray>& log() const { return m_log; }    // "POST /api/auth/login {…}"
    const QList<QUrl>& opened() const { return m_opened; }    // in the browser

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
