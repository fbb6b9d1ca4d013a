#pragma once

#include <QStringList>

struct ServiceConfiguration;

// `moltiva export`: photos with their texts to PNG files, paid for by the account that is signed
// in. Gives the exit status.
int runExport(const QStringList& arguments, const ServiceConfiguration& configuration);
