#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <chrono>
#include <memory>
#include <stop_token>

// Another program and how it is run. Standard input is the null device.
struct ChildCommand {
    QString program;    // path of the executable
    QStringList arguments;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QString folder;    // the working directory; empty: that of this program
    // Takes standard error, and standard output unless that is collected. Empty: discarded.
    QString log;
    qint64 mostOutput = 0;    // bytes of standard output to collect; more ends the run. 0: none
    std::chrono::milliseconds timeout = std::chrono::seconds(25);
};

struct ChildOutcome {
    enum class Kind { exited, crashed, notStarted, timedOut, stopped, tooMuchOutput };

    Kind kind = Kind::notStarted;
    int status = 0;       // exit status, number of the signal, or the system's error number
    QByteArray output;    // only of a child that exited

    bool isSuccess() const { return kind == Kind::exited && status == 0; }
};

// How a child is ended: SIGTERM, SIGINT after `patience`, SIGKILL after `longest`.
struct ChildEnding {
    std::chrono::milliseconds patience{2000}, longest{2400};
};

// A running program in a process group of its own. The group ends with this object, and with this
// program however that ends: a watcher in the group reads a pipe that only this program holds open.
// For a thread that may wait; all functions on the same thread.
class ChildProcess {
public:
    // Starts the program. `abandon`: kills the child without giving it time to end.
    explicit ChildProcess(const ChildCommand& command, std::stop_token abandon = {},
                          ChildEnding ending = {});
    // Waits until the whole group has ended: 2.4 s at most, for a child that ignores signals.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // Blocks until the child has ended. Asks it to end, and returns at once, when `stop` is
    // requested, when its time is over or when it prints too much. Call once.
    ChildOutcome wait(std::stop_token stop = {});

private:
    class Running;
    std::unique_ptr<Running> m_running;
};
