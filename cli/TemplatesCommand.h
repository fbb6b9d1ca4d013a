#pragma once

#include <QStringList>

struct ServiceConfiguration;

// Runs `moltiva templates`, and returns the exit status.
int runTemplates(const QStringList& arguments, const ServiceConfiguration& configuration);
