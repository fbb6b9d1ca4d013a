#pragma once

#include <QString>

// Where the user's data lie; made if missing.
QString userDataFolder();

// In the user's cache; whoever writes there makes them.
QString thumbnailFolder();
QString stagingPlace();    // of finished images until they are paid
