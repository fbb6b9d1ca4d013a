#pragma once

#include <QtGlobal>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <set>

// Shares out a budget of memory among passes: a pass gets its bytes while the sum stays within the
// budget. The oldest pass that is still growing may exceed it; otherwise all could wait for memory
// that the others hold.
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

        [[nodiscard]] bool grow(qint64 bytes);    // waits for memory; false: refused
        void stopGrowing();    // keeps the bytes, but ends growing: another pass becomes the oldest
        void release();        // gives all bytes back

    private:
        MemoryGate& m_gate;
        std::optional<quint64> m_number;    // in `m_growing`, while it is growing
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
