#pragma once

#include <QtGlobal>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <set>

// Counts the memory of what is under way, which goes on while the sum stays within the budget. The
// first of those that still grow may go beyond it: else each could hold what the others wait for.
class MemoryGate {
public:
    // Nobody waits longer than `patience`, nor once `isEnding`.
    MemoryGate(qint64 budget, std::chrono::milliseconds patience, const std::atomic_bool& isEnding)
        : m_budget(budget), m_patience(patience), m_isEnding(isEnding)
    {
    }

    // Holds its bytes until it goes; the gate must outlive it.
    class Pass {
    public:
        explicit Pass(MemoryGate& gate) : m_gate(gate) {}
        ~Pass() { letGo(); }
        Pass(const Pass&) = delete;
        Pass& operator=(const Pass&) = delete;

        [[nodiscard]] bool grow(qint64 bytes);    // waits; whether it may
        void settle();                            // it grows no more
        void letGo();                             // of all bytes

    private:
        MemoryGate& m_gate;
        std::optional<quint64> m_number;    // while it grows
        qint64 m_bytes = 0;
    };

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    const qint64 m_budget;
    const std::chrono::milliseconds m_patience;
    const std::atomic_bool& m_isEnding;
    qint64 m_used = 0;
    quint64 m_next = 0;
    std::set<quint64> m_growing;    // numbers of passes
};
