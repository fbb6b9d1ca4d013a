#pragma once

#include "platform/SystemLock.h"

#include <QString>

#include <memory>

// One run of the program among those that share a folder of data. Others can tell whether it still
// goes on: it holds a lock, which the system takes from it however it ends.
class ProgramRun {
public:
    explicit ProgramRun(const QString& folder);
    ~ProgramRun();

    // The name of this run; empty when its lock could not be had. Taken when it is first asked for.
    QString name();
    bool is(const QString& run) const { return m_lock && run == m_name; }
    bool isGoingOn(const QString& run) const;    // this one or another

private:
    QString lockFile(const QString& run) const;
    void removeEnded() const;

    QString m_folder, m_name;
    std::unique_ptr<SystemLock> m_lock;
};
