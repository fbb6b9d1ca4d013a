#pragma once

#include "platform/SerialThread.h"

#include <QCoroTask>
#include <QStringList>

#include <chrono>
#include <stop_token>

// Why a program did not succeed, for the user.
struct LocalAIProcessError {
    QString message;
};

// Runs a program that takes long, with its output in a log file. The destructor ends the program
// and what it has started.
class ProcessRunner {
public:
    ~ProcessRunner() { stop(); }

    // Throws LocalAIProcessError when the program fails, takes longer than `timeout` or is stopped.
    // The log of a failure stays, for the user to read. The task may outlive this object.
    QCoro::Task<> run(QString executable, QStringList arguments, std::chrono::seconds timeout);
    void stop() { m_stop.request_stop(); }

private:
    std::stop_source m_stop;
    SerialThread m_thread;
};

// The message of a failed program. `log`: the end of its output, whose last line tells the reason.
QString processFailure(const QByteArray& log, const QString& logFile);
