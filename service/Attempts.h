#pragma once

#include <QHash>
#include <QList>
#include <QString>

#include <mutex>

// Limits how often something may be tried under a key. Forgets everything when the program ends.
// May be used from any thread.
class Attempts {
public:
    Attempts(int most, qint64 window) : m_most(most), m_window(window) {}

    // Returns false if `key` has had `most` attempts within the last `window` milliseconds; else
    // counts this one and returns true.
    bool allow(const QString& key, qint64 now);
    void forget(const QString& key);    // restarts the count at 0, as after a success

private:
    void dropOld(qint64 now);
    void dropOldest();

    const int m_most;
    const qint64 m_window;
    std::mutex m_mutex;
    QHash<QString, QList<qint64>> m_times;
};
