#pragma once

#include "platform/SerialThread.h"

#include <QCoroTask>
#include <QObject>

#include <stop_token>

// Gathers what helps others to find a fault: versions, platform, the result of the self-test and
// the end of the log, without names, e-mail addresses or paths.
class Diagnostics : public QObject {
    Q_OBJECT
public:
    // `program` runs the self-test, in a process of its own, when it is given "--self-test".
    Diagnostics(const QString& program, const QString& logFile, QObject* parent = nullptr);
    ~Diagnostics() override;

    // Ends with gathered(). Does nothing while it gathers already.
    void gather();

Q_SIGNALS:
    void gathered(const QString& text);

private:
    QCoro::Task<> gatherText();

    const QString m_program, m_logFile;
    bool m_isGathering = false;
    std::stop_source m_ending;
    SerialThread m_thread;
};
