#pragma once

#include "platform/ProgramRun.h"

// A folder for files on their way elsewhere, which only their user may read. The destructor removes
// it with its contents; after a crash the next StagingFolder does.
class StagingFolder {
public:
    // `place`: the parent of all staging folders. Removes those of ended runs, and waits for the
    // disk.
    explicit StagingFolder(const QString& place);
    ~StagingFolder();
    StagingFolder(const StagingFolder&) = delete;
    StagingFolder& operator=(const StagingFolder&) = delete;

    static void removeLeftovers(const QString& place);
    bool isUsable() const { return !m_path.isEmpty(); }
    // The program run that owns this folder.
    QString runName() { return m_run.name(); }
    bool isGoingOn(const QString& run) const { return m_run.isGoingOn(run); }
    QString filePath(const QString& name) const { return m_path + u'/' + name; }

private:
    ProgramRun m_run;
    QString m_path;
};
