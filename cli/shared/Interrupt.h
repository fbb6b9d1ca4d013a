#pragma once

#include <atomic>

// While an Interrupt exists, the first Ctrl+C (or SIGTERM, SIGHUP) only sets flag(), so that the
// files being written are finished; a second one ends the program. At most one Interrupt may exist.
class Interrupt {
public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    const std::atomic_bool& flag() const;
};
