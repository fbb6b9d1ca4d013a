#pragma once

#include "platform/Desktop.h"

#include <memory>

// Whether the desktop answers requests for file dialogs of its own. May wait for half a second.
// Needs a QCoreApplication, which may end afterwards.
bool desktopOffersFileDialogs();

// The desktop of this session.
std::unique_ptr<Desktop> sessionDesktop();
