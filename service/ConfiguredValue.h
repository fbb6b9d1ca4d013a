#pragma once

#include <QString>

// The environment variable or, if it is empty, `key` (group/name) in moltiva.conf. Empty if neither
// is set.
QString configuredValue(const char* variable, const QString& key);
