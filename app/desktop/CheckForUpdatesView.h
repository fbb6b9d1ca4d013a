#pragma once

#include "app/desktop/UpdateController.h"

// The command of the menu that asks for updates.
struct CheckForUpdatesView {
    static constexpr QStringView title = u"Buscar actualizaciones...";
    UpdateController& updates;

    bool isEnabled() const { return !updates.isChecking(); }
    void press() const { updates.checkForUpdates(); }
};
