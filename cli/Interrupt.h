#pragma once

#include <atomic>

// While it lives, the first Ctrl+C (or request to end) only raises a flag, so that files under way
// are finished; a second one ends the program. One at a time.
class Interrupt {
public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    const std::atomic_bool& flag() const;
};
