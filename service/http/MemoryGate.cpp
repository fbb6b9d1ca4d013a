#include "service/http/MemoryGate.h"

#include <utility>

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

bool MemoryGate::Pass::grow(qint64 bytes)
{
    std::unique_lock lock(m_gate.m_mutex);
    if (!m_number) {
        m_number = m_gate.m_next++;
        m_gate.m_growing.insert(*m_number);
    }
    const auto mayGrow = [&] {
        const bool isFirst = *m_gate.m_growing.begin() == *m_number;
        return m_gate.m_used + bytes <= m_gate.m_budget ||
               (isFirst && m_gate.m_used - m_bytes <= m_gate.m_budget);
    };
    // Waits in short steps: nothing notifies `m_changed` when `m_isEnding` becomes true.
    for (const auto end = Clock::now() + m_gate.m_patience; !mayGrow();) {
        if (m_gate.m_isEnding || Clock::now() >= end)
            return false;
        m_gate.m_changed.wait_for(lock, 100ms);
    }
    m_gate.m_used += bytes;
    m_bytes += bytes;
    return true;
}

void MemoryGate::Pass::stopGrowing()
{
    const std::scoped_lock lock(m_gate.m_mutex);
    if (m_number)
        m_gate.m_growing.erase(*std::exchange(m_number, std::nullopt));
    m_gate.m_changed.notify_all();
}

void MemoryGate::Pass::release()
{
    stopGrowing();
    const std::scoped_lock lock(m_gate.m_mutex);
    m_gate.m_used -= std::exchange(m_bytes, 0);
    m_gate.m_changed.notify_all();
}
