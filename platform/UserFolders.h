#pragma once

#include <QString>

// Where the user's data lie; made if missing.
QString userDataFolder();

// Why a folder takes no files, as the end of a Spanish sentence: its disk, or else what is given.
QString whyNotWritable(const QString& folder,
                       const QString& otherwise = QStringLiteral("no hay permiso para escribir"));

// In the user's cache; whoever writes there makes them.
QString thumbnailFolder();
QString stagingPlace();    // of finished images until they are paid
