#pragma once

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

inline void turnFor(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

template <typename Done>
void turnUntil(Done done)
{
    while (!done())
        turnFor(20);
}

// Prints the median, the 95th percentile and the longest of `times`, which are in milliseconds.
inline void report(const char* what, std::vector<double> times)
{
    if (times.empty())
        return;
    std::ranges::sort(times);
    const auto at = [&](double share) {
        return times[std::min(std::size_t(share * double(times.size())), times.size() - 1)];
    };
    std::printf("%-44s median %6.2f ms   95th %6.2f ms   longest %6.2f ms\n", what, at(0.5),
                at(0.95), at(1));
    std::fflush(stdout);
}

template <typename Work>
double timeOf(Work work)
{
    QElapsedTimer watch;
    watch.start();
    work();
    return double(watch.nsecsElapsed()) / 1e6;
}

// Runs `work` `count` times and returns the time of each run, in milliseconds. Runs the event loop
// for `pause` milliseconds after each.
template <typename Work>
std::vector<double> timed(int count, int pause, Work work)
{
    std::vector<double> times;
    for (int i = 0; i < count; ++i) {
        times.push_back(timeOf(work));
        turnFor(pause);
    }
    return times;
}

// Measures each event that the event loop delivers; the time includes that of further events sent
// while it is handled.
class TimedApplication : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        if (m_depth > 0)
            return QApplication::notify(receiver, event);
        ++m_depth;
        bool done = false;
        milliseconds.push_back(timeOf([&] { done = QApplication::notify(receiver, event); }));
        --m_depth;
        return done;
    }

    std::vector<double> milliseconds;

private:
    int m_depth = 0;
};

inline constexpr double frame = 16;    // milliseconds

// The processor time that this thread has used, in milliseconds. On a busy machine it tells what an
// event costs better than the clock does.
inline double processorTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

// Prints each event that takes longer than a frame.
class NamingApplication : public TimedApplication {
public:
    using TimedApplication::TimedApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        const char* name = receiver->metaObject()->className();
        const int type = event->type();
        const std::size_t before = milliseconds.size();
        const double begin = processorTime();
        const bool done = TimedApplication::notify(receiver, event);
        if (milliseconds.size() > before && milliseconds.back() > frame) {
            std::printf("  %5.1f ms, %5.1f of them working: event %d of %s\n", milliseconds.back(),
                        processorTime() - begin, type, name);
        }
        return done;
    }
};

// Prints how many of the events took longer than a frame, and forgets them.
inline void tellEvents(const char* what, std::vector<double>& events)
{
    const auto slow = std::ranges::count_if(events, [](double time) { return time > frame; });
    std::printf("%s: %zu events, %lld over %.0f ms\n", what, events.size(), qlonglong(slow), frame);
    report("  one event", events);
    events.clear();
}
