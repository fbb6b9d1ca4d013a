#include "platform/photo/DecodeGate.h"

#include <algorithm>

DecodeGate::Pass DecodeGate::enter(qint64 bytes)
{
    std::unique_lock lock(m_mutex);
    const quint64 ticket = m_nextTicket++;
    m_changed.wait(
        lock, [&] { return ticket == m_served && (m_used == 0 || m_used + bytes <= m_budget); });
    ++m_served;
    m_used += bytes;
    m_changed.notify_all();
    return {this, bytes};
}

DecodeGate::Pass::~Pass()
{
    if (!m_gate)
        return;
    const std::scoped_lock lock(m_gate->m_mutex);
    m_gate->m_used -= m_bytes;
    m_gate->m_changed.notify_all();
}

void DecodeGate::Pass::shrinkTo(qint64 bytes)
{
    const std::scoped_lock lock(m_gate->m_mutex);
    const qint64 kept = std::min(bytes, m_bytes);
    m_gate->m_used -= m_bytes - kept;
    m_bytes = kept;
    m_gate->m_changed.notify_all();
}
