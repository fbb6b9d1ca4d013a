#include "cli/shared/Interrupt.h"

#include <array>
#include <csignal>

namespace {

constexpr std::array endingSignals{SIGINT, SIGTERM, SIGHUP};

std::atomic_bool raised = false;
static_assert(std::atomic_bool::is_always_lock_free, "a signal handler may not wait");

extern "C" void onSignal(int signal)
{
    raised = true;
    std::signal(signal, SIG_DFL);
}

}    // namespace

Interrupt::Interrupt()
{
    raised = false;
    for (const int signal : endingSignals) {
        // Stays ignored when the command was started to outlive its terminal.
        if (std::signal(signal, onSignal) == SIG_IGN)
            std::signal(signal, SIG_IGN);
    }
}

Interrupt::~Interrupt()
{
    for (const int signal : endingSignals) {
        if (std::signal(signal, SIG_DFL) == SIG_IGN)
            std::signal(signal, SIG_IGN);
    }
}

const std::atomic_bool& Interrupt::flag() const
{
    return raised;
}
