#pragma once

#include <QStringList>

struct ServiceConfiguration;

// `moltiva local`: the state of the engine that writes texts on this machine, installing and
// removing it. Returns the exit status.
int runLocal(const QStringList& arguments, const ServiceConfiguration& configuration);
