#pragma once

#include <QStringList>

struct ServiceConfiguration;

// Run `moltiva networks` and `moltiva connect`, and return the exit status.
int runNetworks(const QStringList& arguments, const ServiceConfiguration& configuration);
int runConnect(const QStringList& arguments, const ServiceConfiguration& configuration);
