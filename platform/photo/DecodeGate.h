#pragma once

#include <QtGlobal>

#include <condition_variable>
#include <mutex>
#include <utility>

// Limits the memory of all decoders together. Each decoder calls enter() with the bytes that it
// will need, and waits there until the sum is within the budget. Decoders enter in the order of
// their calls. One that needs more than the whole budget runs alone.
class DecodeGate {
public:
    explicit DecodeGate(qint64 budget) : m_budget(budget) {}

    // Counts its bytes against the budget until it is destroyed. The gate must outlive the pass.
    class Pass {
    public:
        Pass(Pass&& other) noexcept
            : m_gate(std::exchange(other.m_gate, nullptr)), m_bytes(other.m_bytes)
        {
        }
        Pass& operator=(Pass&&) = delete;
        ~Pass();
        void shrinkTo(qint64 bytes);    // gives everything above `bytes` back to the budget

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
