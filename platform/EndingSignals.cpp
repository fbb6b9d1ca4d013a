#include "platform/EndingSignals.h"

#include <QSocketNotifier>

#include <array>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {

std::array<int, 2> endingPipe{-1, -1};

extern "C" void onEndingSignal(int signal)
{
    std::signal(signal, SIG_DFL);
    const char byte = 0;
    [[maybe_unused]] const auto written = ::write(endingPipe[1], &byte, 1);
}

}    // namespace

void onEndingSignals(QCoreApplication& application, const std::function<void()>& end)
{
    if (::pipe2(endingPipe.data(), O_CLOEXEC) != 0)
        return;
    auto* notifier = new QSocketNotifier(endingPipe[0], QSocketNotifier::Read, &application);
    QObject::connect(notifier, &QSocketNotifier::activated, &application, [notifier, end] {
        char byte = 0;
        if (::read(int(notifier->socket()), &byte, 1) == 1)
            end();
    });
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        if (std::signal(signal, onEndingSignal) == SIG_IGN)
            std::signal(signal, SIG_IGN);
    }
}
