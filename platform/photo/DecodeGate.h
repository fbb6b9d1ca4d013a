#pragma once

#include <QtGlobal>

#include <condition_variable>
#include <mutex>
#include <utility>

// Limits the memory of all decoders together: each enters with the bytes that it will need.
// Decoders start in the order in which they came, while the sum stays within the budget; one that
// needs more than the budget runs alone.
class DecodeGate {
public:
    explicit DecodeGate(qint64 budget) : m_budget(budget) {}

    // Counts its bytes against the budget until it is destroyed; the gate must outlive it.
    class Pass {
    public:
        Pass(Pass&& other) noexcept
            : m_gate(std::exchange(other.m_gate, nullptr)), m_bytes(other.m_bytes)
        {
        }
        Pass& operator=(Pass&&) = delete;
        ~Pass();
        void shrinkTo(qint64 bytes);    // gives the bytes above these back to the budget

    private:
        friend class DecodeGate;
        Pass(DecodeGate* gate, qint64 bytes) : m_gate(gate), m_bytes(bytes) {}
        DecodeGate* m_gate;
        qint64 m_bytes;
    };

    Pass enter(qint64 bytes);    // blocks until the budget allows `bytes`

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    const qint64 m_budget;
    qint64 m_used = 0;
    quint64 m_nextTicket = 0, m_served = 0;
};
