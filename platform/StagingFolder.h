#pragma once

#include "platform/ProgramRun.h"

// A folder of files on their way elsewhere that only their user may read. It goes with all that is
// in it; what a crash leaves behind goes with the next one that is made.
class StagingFolder {
public:
    // `place`: of all such folders. What ended runs left there is removed, which waits.
    explicit StagingFolder(const QString& place);
    ~StagingFolder();
    StagingFolder(const StagingFolder&) = delete;
    StagingFolder& operator=(const StagingFolder&) = delete;

    static void removeLeftovers(const QString& place);
    bool isUsable() const { return !m_path.isEmpty(); }
    // Of the run of the program that this folder belongs to, and whether one of such a name goes
    // on.
    QString runName() { return m_run.name(); }
    bool isGoingOn(const QString& run) const { return m_run.isGoingOn(run); }
    QString filePath(const QString& name) const { return m_path + u'/' + name; }

private:
    ProgramRun m_run;
    QString m_path;
};
