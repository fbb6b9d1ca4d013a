#include "platform/Desktop.h"

#include <utility>

void Desktop::setPreferences(const DesktopPreferences& preferences)
{
    if (std::exchange(m_preferences, preferences) != preferences)
        Q_EMIT preferencesChanged();
}
