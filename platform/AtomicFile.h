#pragma once

#include <QByteArrayView>
#include <QString>

#include <functional>

// Writes `bytes` beside `path` under a temporary name, then renames that file to `path`, so that
// nobody ever reads half a file there. Not flushed to the disk: over a batch that costs more than
// the drawing. Returns the system's error message, empty on success. `run`: name of the ProgramRun,
// which becomes a part of the temporary name.
QString writeAtomically(const QString& path, QByteArrayView bytes, const QString& run = {});

// Removes from `folder` the temporary files of runs for which `isGoingOn` is false. Waits for the
// disk.
void removeUnfinished(const QString& folder,
                      const std::function<bool(const QString& run)>& isGoingOn);

// Every temporary name begins with this prefix, whose dot hides the file; a crash leaves temporary
// files behind. They do not repeat the name of `path`, which may already be as long as the file
// system allows.
inline QString unfinishedPrefix()
{
    return QStringLiteral(".moltiva-");
}
