#pragma once

#include <QString>

// Where the user's data lie; made if missing.
QString userDataFolder();
