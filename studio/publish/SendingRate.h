#pragma once

#include <optional>

class PreferencesStore;

// The rate of the last sending of a post, in bytes a second, which the preferences hold for the
// window and the commands alike. Empty if none was measured yet.
std::optional<double> lastSendingRate(const PreferencesStore& preferences);
void storeSendingRate(PreferencesStore& preferences, double rate);
