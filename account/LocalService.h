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

// The local service's executable, which is installed beside this program.
QString localServiceProgram();

// Finds or starts the account service on this machine. All processes with the same data folder
// share one service, which ends after the last of them.
class LocalService : public QObject {
    Q_OBJECT
public:
    struct Place {
        QString program;          // the executable
        QString data;             // the folder of its database
        QString administrator;    // e-mail address
        std::chrono::milliseconds longestStart = std::chrono::seconds(6);
    };

    explicit LocalService(Place place, QObject* parent = nullptr);
    ~LocalService() override;

    // The address of the service, which is started if it is not running. Throws TransportError if
    // it cannot be started or does not answer, with the reason that the service logged, if any.
    QCoro::Task<QUrl> address(std::stop_token stop = {});
    // Empty until address() has found the service, and after the service has ended.
    const QUrl& knownAddress() const { return m_address; }

private:
    void begin();
    void connectAgain();
    void read();
    void lost();
    // Ends the attempt to reach the service and resumes the calls of address(). An empty `problem`
    // means success.
    void endSearch(const QString& problem = {});
    bool launch();
    QString logFile() const;
    QString reasonInLog() const;

    const Place m_place;
    QLocalSocket m_socket;    // stays connected, because the service ends without connections
    QTimer m_retry, m_giveUp;
    QUrl m_address;
    QString m_problem;       // of the last attempt, as the end of a Spanish sentence
    qint64 m_process = 0;    // process started in this attempt; 0: none
    QList<std::shared_ptr<Completion>> m_waiting;
    bool m_isStarting = false, m_isLastLook = false;
};
