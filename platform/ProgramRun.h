#pragma once

#include "platform/SystemLock.h"

#include <QString>

#include <memory>

// One run of the program among those that share a data folder. It locks a file in that folder, by
// which other runs see that this one is going on. The system releases the lock even after a crash.
class ProgramRun {
public:
    explicit ProgramRun(const QString& folder);
    ~ProgramRun();

    // The unique name of this run; the first call takes the lock. Empty if the lock could not be
    // taken.
    QString name();
    bool is(const QString& run) const { return m_lock && run == m_name; }
    bool isGoingOn(const QString& run) const;    // `run` names this run or another

private:
    QString lockFile(const QString& run) const;
    void removeEnded() const;

    QString m_folder, m_name;
    std::unique_ptr<SystemLock> m_lock;
};
