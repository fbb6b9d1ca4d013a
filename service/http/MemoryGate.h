#pragma once

#include <QtGlobal>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <set>

// Divides a memory budget among passes. A pass gets the bytes it asks for while the sum of all
// passes stays within the budget. The oldest pass that is still growing may exceed the budget:
// otherwise all passes could wait for memory that the others have.
class MemoryGate {
public:
    // grow() gives up after `patience`, and as soon as `isEnding` is true.
    MemoryGate(qint64 budget, std::chrono::milliseconds patience, const std::atomic_bool& isEnding)
        : m_budget(budget), m_patience(patience), m_isEnding(isEnding)
    {
    }

    // A share of the memory, given back by the destructor. The gate must outlive it.
    class Pass {
    public:
        explicit Pass(MemoryGate& gate) : m_gate(gate) {}
        ~Pass() { release(); }
        Pass(const Pass&) = delete;
        Pass& operator=(const Pass&) = delete;

        [[nodiscard]] bool grow(qint64 bytes);    // waits for memory; false if it gave up
        void stopGrowing();    // keeps the bytes; the next pass becomes the oldest
        void release();        // gives all bytes back

    private:
        MemoryGate& m_gate;
        std::optional<quint64> m_number;    // in `m_growing`; empty while the pass is not growing
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
    std::set<quint64> m_growing;    // numbers of passes; the smallest is the oldest
};
