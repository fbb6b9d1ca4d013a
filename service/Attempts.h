#pragma once

#include <QHash>
#include <QList>
#include <QString>

#include <mutex>

// Limits how often something may be tried under a key. The attempts are kept in memory only. Used
// from any thread.
class Attempts {
public:
    Attempts(int most, qint64 window) : m_most(most), m_window(window) {}

    // Counts an attempt and returns true, unless `most` were made within the window (milliseconds).
    bool allow(const QString& key, qint64 now);
    void forget(const QString& key);    // after a success: counts from 0 again

private:
    void dropOld(qint64 now);
    void dropOldest();

    const int m_most;
    const qint64 m_window;
    std::mutex m_mutex;
    QHash<QString, QList<qint64>> m_times;
};
