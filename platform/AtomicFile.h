#pragma once

#include <QByteArrayView>
#include <QString>

#include <functional>

// Writes the bytes beside `path` under a temporary name and renames: the file is whole or absent,
// and one of that name is replaced only by a whole new one. Not flushed to the disk: over a batch
// that costs more than the drawing. An empty string, or the system's reason in its own words.
// `run`: of the program, which stands in the temporary name.
QString writeAtomically(const QString& path, QByteArrayView bytes, const QString& run = {});

// Removes from the folder what runs have left unfinished that do not go on. Waits for the disk.
void removeUnfinished(const QString& folder,
                      const std::function<bool(const QString& run)>& isGoingOn);

// How the temporary names begin, which a crash leaves behind. Hidden, and short: a target's name
// may already be as long as the file system allows.
inline QString unfinishedPrefix()
{
    return QStringLiteral(".moltiva-");
}
