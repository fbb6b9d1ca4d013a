#pragma once

#include <QString>

// Takes places of the user's folders out of the environment that are no absolute paths: they would
// be others for each folder that a program is started in. Before anything asks for one.
void ignoreRelativeFolders();

// Where the user's data lie; made if missing.
QString userDataFolder();

// In the user's cache; whoever writes there makes them.
QString thumbnailFolder();
QString stagingPlace();    // of finished images until they are paid
