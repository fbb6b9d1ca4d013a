#pragma once

#include "templates/VisualTemplate.h"

class PreferencesStore;

// What the user has saved, each list as one value of the preferences. A value that does not read is
// an empty list; of a readable one, entries that do not read are passed over.

namespace DesignTemplateStore {
QList<DesignTemplate> load(const PreferencesStore& preferences);
bool save(PreferencesStore& preferences, const QList<DesignTemplate>& styles);
}    // namespace DesignTemplateStore

namespace VisualTemplateStore {
QList<VisualTemplate> load(const PreferencesStore& preferences);
bool save(PreferencesStore& preferences, const QList<VisualTemplate>& templates);
}    // namespace VisualTemplateStore
