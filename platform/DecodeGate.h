#pragma once

#include <QtGlobal>

#include <condition_variable>
#include <mutex>
#include <utility>

// Stands before all decoders and counts the bytes each will need. They start in the order they
// came, while the sum stays within the budget; one that needs more than the budget runs alone.
class DecodeGate {
public:
    explicit DecodeGate(qint64 budget) : m_budget(budget) {}

    // Holds its bytes until it goes; the gate must outlive it.
    class Pass {
    public:
        Pass(Pass&& other) noexcept
            : m_gate(std::exchange(other.m_gate, nullptr)), m_bytes(other.m_bytes)
        {
        }
        Pass& operator=(Pass&&) = delete;
        ~Pass();
        void shrinkTo(qint64 bytes);    // gives back what is above

    private:
        friend class DecodeGate;
        Pass(DecodeGate* gate, qint64 bytes) : m_gate(gate), m_bytes(bytes) {}
        DecodeGate* m_gate;
        qint64 m_bytes;
    };

    Pass enter(qint64 bytes);    // waits

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    const qint64 m_budget;
    qint64 m_used = 0;
    quint64 m_nextTicket = 0, m_served = 0;
};
