#pragma once

#include <QString>

// A lock on a file, which the system releases however this process ends. The contents of the file
// do not matter, nor does a file that an ended process left behind.
class SystemLock {
public:
    enum class Open { any, existing, fresh };
    enum class State {
        ours,
        others,        // or the holder is just removing the file: worth another attempt
        missing,       // there is no file, and Open::existing makes none
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
