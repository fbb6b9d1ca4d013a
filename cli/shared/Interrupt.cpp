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
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
}

Interrupt::~Interrupt()
{
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
}

const std::atomic_bool& Interrupt::flag() const
{
    return raised;
}
