#include "service/Attempts.h"

#include <algorithm>

namespace {

constexpr qsizetype mostKeys = 10'000;

}    // namespace

bool Attempts::allow(const QString& key, qint64 now)
{
    const std::scoped_lock lock(m_mutex);
    if (m_times.size() >= mostKeys)
        dropOld(now);
    // Drops the oldest key when there are too many: a client that tries under many keys must not
    // keep others out.
    if (m_times.size() >= mostKeys && !m_times.contains(key))
        dropOldest();
    QList<qint64>& times = m_times[key];
    times.removeIf([&](qint64 time) { return time <= now - m_window; });
    if (times.size() >= m_most)
        return false;
    times.append(now);
    return true;
}

void Attempts::forget(const QString& key)
{
    const std::scoped_lock lock(m_mutex);
    m_times.remove(key);
}

void Attempts::dropOld(qint64 now)
{
    m_times.removeIf([&](auto entry) { return entry.value().last() <= now - m_window; });
}

void Attempts::dropOldest()
{
    const auto last = [](const QList<qint64>& times) { return times.last(); };
    m_times.erase(std::ranges::min_element(m_times, {}, last));
}
