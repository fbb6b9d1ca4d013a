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

// The account service on this machine. Started when its address is first asked for, and again if it
// has ended; shared with all programs on the same data. Ends with the last of them.
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

    // Starts or finds the service. Throws TransportError when it cannot be started or does not
    // answer, with the reason it logged, if any.
    QCoro::Task<QUrl> address(std::stop_token stop = {});
    // Empty while the service does not run.
    const QUrl& knownAddress() const { return m_address; }

private:
    void begin();
    void connectAgain();
    void read();
    void lost();
    // Ends the attempt to reach the service; an empty `problem` means success.
    void endSearch(const QString& problem = {});
    bool launch();
    QString logFile() const;
    QString reasonInLog() const;

    const Place m_place;
    QLocalSocket m_socket;    // stays connected: the service ends without connections
    QTimer m_retry, m_giveUp;
    QUrl m_address;
    QString m_problem;       // of the last attempt, as the end of a Spanish sentence
    qint64 m_process = 0;    // process started in this attempt; 0: none
    QList<std::shared_ptr<Completion>> m_waiting;
    bool m_isStarting = false, m_isLastLook = false;
};
