#include "platform/ChildProcess.h"

#include <QFile>
#include <QList>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <functional>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

using Clock = std::chrono::steady_clock;

class Descriptor {
public:
    explicit Descriptor(int number = -1) : m_number(number) {}
    Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }
    ~Descriptor() { close(); }

    operator int() const { return m_number; }
    void close()
    {
        if (const int number = std::exchange(m_number, -1); number >= 0)
            ::close(number);
    }

private:
    int m_number;
};

// Neither end reaches a program that is started meanwhile.
struct Pipe {
    Descriptor reading, writing;

    Pipe()
    {
        std::array<int, 2> ends{-1, -1};
#ifdef Q_OS_LINUX
        if (::pipe2(ends.data(), O_CLOEXEC) != 0)
            return;
#else
        if (::pipe(ends.data()) != 0)
            return;
        for (const int end : ends)
            ::fcntl(end, F_SETFD, FD_CLOEXEC);
#endif
        reading = Descriptor(ends[0]);
        writing = Descriptor(ends[1]);
    }

    // Makes this program's reads return at once; a child that reads must wait.
    void readWithoutWaiting()
    {
        ::fcntl(reading, F_SETFL, O_NONBLOCK);
    }
};

// What a child is started with, for posix_spawn(), which copies none of our memory.
class SpawnPlan {
public:
    SpawnPlan()
    {
        ::posix_spawn_file_actions_init(&m_actions);
        ::posix_spawnattr_init(&m_attributes);
    }
    ~SpawnPlan()
    {
        ::posix_spawn_file_actions_destroy(&m_actions);
        ::posix_spawnattr_destroy(&m_attributes);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    void open(int number, const QString& file, int flags)
    {
        constexpr mode_t ownerOnly = 0600;
        ::posix_spawn_file_actions_addopen(&m_actions, number, QFile::encodeName(file).constData(),
                                           flags, ownerOnly);
    }
    void use(int number, int from) { ::posix_spawn_file_actions_adddup2(&m_actions, from, number); }
    void enter(const QString& folder)
    {
        ::posix_spawn_file_actions_addchdir_np(&m_actions, QFile::encodeName(folder).constData());
    }

    // Starts a program that has no open file but its standard three.
    // `group`: the process group to join; 0: a new one. `blocked`: signals that do not reach it.
    // Returns the system's error number.
    int start(pid_t& process, const QStringList& words, const QStringList& environment, pid_t group,
              const sigset_t& blocked)
    {
        sigset_t all;
        ::sigfillset(&all);
        ::posix_spawnattr_setsigdefault(&m_attributes, &all);
        ::posix_spawnattr_setsigmask(&m_attributes, &blocked);
        ::posix_spawnattr_setpgroup(&m_attributes, group);
        short flags = POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK;
#ifdef Q_OS_MACOS
        flags |= POSIX_SPAWN_CLOEXEC_DEFAULT;
#else
        ::posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1);
#endif
        ::posix_spawnattr_setflags(&m_attributes, flags);
        Strings arguments(words), variables(environment);
        return ::posix_spawn(&process, arguments.pointers.front(), &m_actions, &m_attributes,
                             arguments.pointers.data(), variables.pointers.data());
    }

private:
    struct Strings {
        QByteArrayList bytes;
        std::vector<char*> pointers;

        explicit Strings(const QStringList& texts)
        {
            for (const QString& text : texts)
                bytes.append(QFile::encodeName(text));
            for (QByteArray& each : bytes)
                pointers.push_back(each.data());
            pointers.push_back(nullptr);
        }
    };

    posix_spawn_file_actions_t m_actions;
    posix_spawnattr_t m_attributes;
};

const QString nothing = u"/dev/null"_s;

// Starts the leader of a new process group. It kills the group when `lifeline` closes, and no
// signal but SIGKILL reaches it. As long as it is not reaped, the group's number is not used again.
int startWatcher(pid_t& watcher, int lifeline)
{
    SpawnPlan plan;
    plan.use(STDIN_FILENO, lifeline);
    plan.open(STDOUT_FILENO, nothing, O_WRONLY);
    plan.open(STDERR_FILENO, nothing, O_WRONLY);
    plan.enter(u"/"_s);    // leaves the user's folder free to be unmounted
    sigset_t all;
    ::sigfillset(&all);
    return plan.start(watcher, {u"/bin/sh"_s, u"-c"_s, u"read -r line; kill -KILL -$$"_s}, {}, 0,
                      all);
}

int startChild(pid_t& child, const ChildCommand& command, int output, pid_t group)
{
    SpawnPlan plan;
    plan.open(STDIN_FILENO, nothing, O_RDONLY);
    plan.open(STDERR_FILENO, command.log.isEmpty() ? nothing : command.log,
              O_WRONLY | O_CREAT | O_APPEND);
    plan.use(STDOUT_FILENO, output >= 0 ? output : STDERR_FILENO);
    if (!command.folder.isEmpty())
        plan.enter(command.folder);
    sigset_t none;
    ::sigemptyset(&none);
    return plan.start(child, QStringList(command.program) + command.arguments,
                      command.environment.toStringList(), group, none);
}

int exitOf(pid_t process)
{
    constexpr int unknown = 127 << 8;    // exit status 127
    int status = 0;
    while (::waitpid(process, &status, 0) < 0) {
        if (errno != EINTR)
            return unknown;
    }
    return status;
}

// Milliseconds for poll(), rounded up.
int untilThen(Clock::time_point then)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(then - Clock::now());
    return int(std::clamp<qint64>(left.count(), 0, 1 << 30));
}

}    // namespace

class ChildProcess::Running {
public:
    Running(const ChildCommand& command, std::stop_token abandon, ChildEnding ending)
        : m_ending(ending), m_abandon(std::move(abandon)), m_mostOutput(command.mostOutput),
          m_deadline(Clock::now() + command.timeout), m_onAbandon(m_abandon, [this] { wake(); })
    {
        m_wakeUp.readWithoutWaiting();
        start(command);
    }
    ~Running() { end(); }

    ChildOutcome wait(const std::stop_token& stop)
    {
        if (m_child <= 0)
            return {ChildOutcome::Kind::notStarted, m_startError, {}};
        const std::stop_callback onStop(stop, [this] { wake(); });
        while (true) {
            using Kind = ChildOutcome::Kind;
            if (stop.stop_requested() || m_abandon.stop_requested())
                return asked(Kind::stopped);
            const bool hasEnded = m_hasEnded;    // before the last of its output is read
            if (!collect())
                return asked(Kind::tooMuchOutput);
            if (hasEnded)
                return outcome();
            if (Clock::now() >= m_deadline)
                return asked(Kind::timedOut);
            sleep(m_deadline);
        }
    }

private:
    void start(const ChildCommand& command)
    {
        Pipe lifeline, output;
        m_startError = startWatcher(m_watcher, lifeline.reading);
        if (m_startError != 0) {
            m_watcher = -1;
            return;
        }
        m_lifeline = std::move(lifeline.writing);
        const bool collects = command.mostOutput > 0;
        m_startError = startChild(m_child, command, collects ? int(output.writing) : -1, m_watcher);
        if (m_startError != 0) {
            m_child = -1;
            return;
        }
        if (collects) {
            output.readWithoutWaiting();
            m_output = std::move(output.reading);
        }
        m_reaper = std::thread([this] {
            m_status = exitOf(m_child);
            m_hasEnded = true;
            wake();
        });
    }

    // Reads what there is. False when it is too much.
    bool collect()
    {
        std::array<char, 64 * 1024> buffer;
        while (m_output >= 0) {
            const auto count = ::read(m_output, buffer.data(), buffer.size());
            if (count < 0 && errno == EINTR)
                continue;
            if (count < 0 && errno == EAGAIN)
                break;
            if (count <= 0)
                m_output.close();
            else
                m_collected.append(buffer.data(), count);
            if (m_collected.size() > m_mostOutput)
                return false;
        }
        return true;
    }

    ChildOutcome outcome() const
    {
        if (WIFEXITED(m_status))
            return {ChildOutcome::Kind::exited, WEXITSTATUS(m_status), m_collected};
        return {ChildOutcome::Kind::crashed, WTERMSIG(m_status), {}};
    }

    ChildOutcome asked(ChildOutcome::Kind reason)
    {
        ask();
        return {reason, 0, {}};
    }

    // Asks the child to end.
    void ask()
    {
        if (!std::exchange(m_askedAt, m_askedAt ? m_askedAt : Clock::now()))
            ::kill(-m_watcher, SIGTERM);
    }

    void end()
    {
        if (m_watcher <= 0)
            return;
        if (m_child > 0) {
            if (!m_hasEnded)
                ask();
            waitUntilEnded(m_askedAt.value_or(Clock::now()) + m_ending.patience);
            if (!m_hasEnded && !m_abandon.stop_requested())
                ::kill(-m_watcher, SIGINT);
            waitUntilEnded(m_askedAt.value_or(Clock::now()) + m_ending.longest);
        }
        ::kill(-m_watcher, SIGKILL);    // also what the child has left behind
        if (m_reaper.joinable())
            m_reaper.join();
        exitOf(m_watcher);
    }

    void waitUntilEnded(Clock::time_point then)
    {
        m_output.close();    // a child that waits for its reader must notice
        while (!m_hasEnded && !m_abandon.stop_requested() && Clock::now() < then)
            sleep(then);
    }

    // Waits for output, for the child's end, for a stop request, or until `then`.
    void sleep(Clock::time_point then)
    {
        std::array<pollfd, 2> looks{pollfd{m_wakeUp.reading, POLLIN, 0},
                                    pollfd{m_output, POLLIN, 0}};
        ::poll(looks.data(), looks.size(), untilThen(then));
        std::array<char, 16> calls;
        while (::read(m_wakeUp.reading, calls.data(), calls.size()) > 0) {
        }
    }
    // From any thread.
    void wake()
    {
        const char call = 0;
        [[maybe_unused]] const auto written = ::write(m_wakeUp.writing, &call, 1);
    }

    const ChildEnding m_ending;
    const std::stop_token m_abandon;
    const qint64 m_mostOutput;
    const Clock::time_point m_deadline;
    Pipe m_wakeUp;
    Descriptor m_lifeline;    // held open until this program ends
    Descriptor m_output;
    QByteArray m_collected;
    pid_t m_watcher = -1, m_child = -1;
    int m_startError = 0;
    int m_status = 0;    // valid after m_hasEnded
    std::atomic<bool> m_hasEnded = false;
    std::thread m_reaper;
    std::optional<Clock::time_point> m_askedAt;
    std::stop_callback<std::function<void()>> m_onAbandon;
};

ChildProcess::ChildProcess(const ChildCommand& command, std::stop_token abandon, ChildEnding ending)
    : m_running(std::make_unique<Running>(command, std::move(abandon), ending))
{
}

ChildProcess::~ChildProcess() = default;

ChildOutcome ChildProcess::wait(std::stop_token stop)
{
    return m_running->wait(stop);
}
