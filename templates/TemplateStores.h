#pragma once

#include "templates/VisualTemplate.h"

class PreferencesStore;

// The user's saved styles and templates, each list in one value of the preferences. An unreadable
// value gives an empty list; unreadable entries of a readable list are dropped.

namespace DesignTemplateStore {
QList<DesignTemplate> load(const PreferencesStore& preferences);
bool save(PreferencesStore& preferences, const QList<DesignTemplate>& styles);
}    // namespace DesignTemplateStore

namespace VisualTemplateStore {
QList<VisualTemplate> load(const PreferencesStore& preferences);
bool save(PreferencesStore& preferences, const QList<VisualTemplate>& templates);
}    // namespace VisualTemplateStore
