#include "cli/shared/Interrupt.h"

#include <csignal>

namespace {

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
    for (const int signal : {SIGINT, SIGTERM})
        std::signal(signal, onSignal);
    // Stays ignored when the command was started to outlive its terminal.
    if (std::signal(SIGHUP, onSignal) == SIG_IGN)
        std::signal(SIGHUP, SIG_IGN);
}

Interrupt::~Interrupt()
{
    for (const int signal : {SIGINT, SIGTERM})
        std::signal(signal, SIG_DFL);
    if (std::signal(SIGHUP, SIG_DFL) == SIG_IGN)
        std::signal(SIGHUP, SIG_IGN);
}

const std::atomic_bool& Interrupt::flag() const
{
    return raised;
}
