#pragma once

#include <QString>

// The lock of a file, which the system keeps for this process and takes back however it ends. What
// the file holds never matters, nor that an ended process has left one.
class SystemLock {
public:
    enum class Open { any, existing, fresh };
    enum class State {
        ours,
        others,        // or somebody is just letting go of it: worth another attempt
        missing,       // no file, where an existing one was asked for
        impossible,    // the file can neither be opened nor made
    };

    explicit SystemLock(const QString& path, Open open = Open::any);
    ~SystemLock();    // removes the file if the lock is ours
    SystemLock(const SystemLock&) = delete;
    SystemLock& operator=(const SystemLock&) = delete;

    State state() const { return m_state; }
    bool isOurs() const { return m_state == State::ours; }

private:
    QString m_path;
    int m_descriptor = -1;
    State m_state = State::impossible;
};
