#pragma once

#include <QHash>
#include <QList>
#include <QString>

#include <mutex>

// Counts what may be tried only so often. Forgotten when the program ends. Any thread.
class Attempts {
public:
    Attempts(int most, qint64 window) : m_most(most), m_window(window) {}

    // Counts one, unless there were too many within the window (milliseconds).
    bool allow(const QString& key, qint64 now);
    void forget(const QString& key);    // what was tried succeeded

private:
    void dropOld(qint64 now);
    void dropOldest();

    const int m_most;
    const qint64 m_window;
    std::mutex m_mutex;
    QHash<QString, QList<qint64>> m_times;
};
