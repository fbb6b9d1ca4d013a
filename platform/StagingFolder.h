#pragma once

#include "platform/ProgramRun.h"

// A folder for files that are moved elsewhere later; only their user may read it. The destructor
// removes it with its contents. After a crash, the next StagingFolder does.
class StagingFolder {
public:
    // `place` is the parent of all staging folders. Removes those of ended runs from it. Waits for
    // the disk.
    explicit StagingFolder(const QString& place);
    ~StagingFolder();
    StagingFolder(const StagingFolder&) = delete;
    StagingFolder& operator=(const StagingFolder&) = delete;

    static void removeLeftovers(const QString& place);
    // Removes the folder with its contents now, whoever still refers to this object.
    void remove();
    bool isUsable() const { return !m_path.isEmpty(); }
    // The name of the ProgramRun that owns this folder.
    QString runName() { return m_run.name(); }
    bool isGoingOn(const QString& run) const { return m_run.isGoingOn(run); }
    QString filePath(const QString& name) const { return m_path + u'/' + name; }

private:
    ProgramRun m_run;
    QString m_path;
};
