#pragma once

#include <QStringList>

struct ServiceConfiguration;

// Runs `moltiva publish`, and returns the exit status.
int runPublish(const QStringList& arguments, const ServiceConfiguration& configuration);
