#pragma once

#include "platform/Completion.h"

#include <QCoroTask>
#include <QList>
#include <QLocalSocket>
#include <QObject>
#include <QTimer>
#include <QUrl>

#include <chrono>
#include <memory>
#include <stop_token>

// The account service on this machine. It is started when its address is first asked for, shared
// with whoever works on the same data, and ends when the last of them is gone; a new one is started
// should it be gone before.
class LocalService : public QObject {
    Q_OBJECT
public:
    struct Place {
        QString program;          // the executable
        QString data;             // the folder of its database
        QString administrator;    // e-mail
        std::chrono::milliseconds longestStart = std::chrono::seconds(6);
    };

    explicit LocalService(Place place, QObject* parent = nullptr);
    ~LocalService() override;

    // Throws TransportError when it cannot be started, or does not answer; with the reason, as far
    // as it left one.
    QCoro::Task<QUrl> address(std::stop_token stop = {});
    // Empty while it does not run.
    const QUrl& knownAddress() const { return m_address; }

private:
    void begin();
    void connectAgain();
    void read();
    void lost();
    // An attempt to reach it has ended, well when there is no problem.
    void endSearch(const QString& problem = {});
    bool launch();
    QString logFile() const;
    QString reasonInLog() const;

    const Place m_place;
    QLocalSocket m_socket;    // held open: it tells the service that it is needed
    QTimer m_retry, m_giveUp;
    QUrl m_address;
    QString m_problem;       // of the last attempt, as the end of a Spanish sentence
    qint64 m_process = 0;    // that was started in this attempt
    QList<std::shared_ptr<Completion>> m_waiting;
    bool m_isStarting = false, m_isLastLook = false;
};
