#pragma once

#include <QStringList>

struct ServiceConfiguration;

// `moltiva export`: writes photos with their texts to PNG files, paid for by the signed-in account.
// Returns the exit status.
int runExport(const QStringList& arguments, const ServiceConfiguration& configuration);
