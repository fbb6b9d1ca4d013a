#pragma once

#include <QString>

// Takes places of the user's folders out of the environment that are no absolute paths: they would
// be others for each folder that a program is started in. Before anything asks for one.
void ignoreRelativeFolders();

// Where the user's data lie; made if missing.
QString userDataFolder();

// Why a folder takes no files, as the end of a Spanish sentence: its disk, or else what is given.
QString whyNotWritable(const QString& folder,
                       const QString& otherwise = QStringLiteral("no hay permiso para escribir"));

// In the user's cache; whoever writes there makes them.
QString thumbnailFolder();
QString stagingPlace();    // of finished images until they are paid
