#pragma once

#include <QStringList>

struct ServiceConfiguration;

// `moltiva export`: renders photos with their texts to PNG files and charges the signed-in account.
// Returns the exit status.
int runExport(const QStringList& arguments, const ServiceConfiguration& configuration);
