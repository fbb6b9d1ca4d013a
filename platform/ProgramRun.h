#pragma once

#include "platform/SystemLock.h"

#include <QString>

#include <memory>

// One run of the program among those that share a data folder. It holds a lock, by which others see
// that it goes on; the system releases the lock however the process ends.
class ProgramRun {
public:
    explicit ProgramRun(const QString& folder);
    ~ProgramRun();

    // The name of this run; the first call takes its lock. Empty when the lock could not be taken.
    QString name();
    bool is(const QString& run) const { return m_lock && run == m_name; }
    bool isGoingOn(const QString& run) const;    // this run or another

private:
    QString lockFile(const QString& run) const;
    void removeEnded() const;

    QString m_folder, m_name;
    std::unique_ptr<SystemLock> m_lock;
};
