#pragma once

#include <QFile>
#include <QList>
#include <QThread>

#include <cerrno>
#include <csignal>

// Process numbers, one a line, that a test's programs write into a file.
inline QList<pid_t> processesIn(const QString& path)
{
    QFile file(path);
    QList<pid_t> processes;
    if (file.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : file.readAll().split('\n')) {
            if (line.toInt() > 0)
                processes.append(line.toInt());
        }
    }
    return processes;
}

// Also true for a process that has ended and waits for init to notice.
inline bool isGone(pid_t process)
{
    if (::kill(process, 0) != 0 && errno == ESRCH)
        return true;
    QFile stat(QStringLiteral("/proc/%1/stat").arg(process));
    return !stat.open(QIODevice::ReadOnly) || stat.readAll().contains(") Z ");
}

// Waits for a condition, half a minute at most.
template <typename Condition>
bool comesTrue(const Condition& condition)
{
    for (int turn = 0; turn < 6000 && !condition(); ++turn)
        QThread::msleep(5);
    return condition();
}

inline bool waitForLines(const QString& path, int count)
{
    return comesTrue([&] { return processesIn(path).size() >= count; });
}

inline bool waitUntilGone(pid_t process)
{
    return comesTrue([&] { return isGone(process); });
}
