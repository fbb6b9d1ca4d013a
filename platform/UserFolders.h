#pragma once

#include <QString>

// Unsets XDG_DATA_HOME and its like where they hold no absolute path: a relative one would mean
// another folder for each working directory. Call before asking for any folder.
void ignoreRelativeFolders();

// The folder of the user's data; made if missing.
QString userDataFolder();

// Why `folder` takes no files, as the end of a Spanish sentence: the state of its disk, else
// `otherwise`.
QString whyNotWritable(const QString& folder,
                       const QString& otherwise = QStringLiteral("no hay permiso para escribir"));

// Folders in the user's cache. The code that writes there makes them.
QString thumbnailFolder();
QString stagingPlace();    // finished images, until they are paid for
