#pragma once

#include <QByteArrayView>
#include <QString>

#include <functional>

// Writes `bytes` beside `path` under a temporary name, then renames that file to `path`, so that
// nobody ever reads half a file there. Does not wait until the bytes are on the disk: for the
// images of a batch, that takes longer than drawing them. Returns the system's error message, or an
// empty string on success. `run` is the name of the ProgramRun; it becomes a part of the temporary
// name.
QString writeAtomically(const QString& path, QByteArrayView bytes, const QString& run = {});

// Removes the temporary files in `folder` that belong to runs for which `isGoingOn` returns false.
// Waits for the disk.
void removeUnfinished(const QString& folder,
                      const std::function<bool(const QString& run)>& isGoingOn);

// The prefix of all temporary names of writeAtomically(); its dot hides the files. The name in
// `path` is not a part of them, because it may already be as long as the file system allows.
inline QString unfinishedPrefix()
{
    return QStringLiteral(".moltiva-");
}
