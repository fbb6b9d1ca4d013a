#pragma once

#include <QString>

// An exclusive lock on a file. The system releases it even if this process crashes. A file that an
// ended process left behind, with whatever contents, does not prevent the lock.
class SystemLock {
public:
    enum class Open { any, existing, fresh };
    enum class State {
        ours,
        others,        // locked elsewhere, or just being removed there: worth another attempt
        missing,       // there is no file, and Open::existing does not create one
        impossible,    // the file cannot be opened, created or locked
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
