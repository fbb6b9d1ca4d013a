#pragma once

#include <QStringList>

// `moltiva export`: photos with their default texts to PNG files. Gives the exit status.
int runExport(const QStringList& arguments);
