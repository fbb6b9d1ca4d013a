#pragma once

#include <QString>

// Unsets XDG_DATA_HOME and similar variables unless they contain an absolute path: a relative one
// would mean another folder in each working directory. Call this before asking for any folder.
void ignoreRelativeFolders();

// Returns the folder for the user's data, and creates it if it is missing.
QString userDataFolder();

// Returns the folder for what the program notes about itself, such as its log, and creates it,
// private to the user, if it is missing.
QString userStateFolder();

QString logFile();    // in userStateFolder()

// Says why files cannot be written to `folder`, as the end of a Spanish sentence: the disk is
// read-only or full; in all other cases, `otherwise`.
QString whyNotWritable(const QString& folder,
                       const QString& otherwise = QStringLiteral("no hay permiso para escribir"));

// Folders in the user's cache, which may not exist yet.
QString thumbnailFolder();
QString stagingPlace();    // for rendered images, until they are paid for
