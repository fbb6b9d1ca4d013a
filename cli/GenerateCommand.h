#pragma once

#include <QStringList>

struct ServiceConfiguration;

// `moltiva generate`: has the copy of photos written and returns the exit status.
int runGenerate(const QStringList& arguments, const ServiceConfiguration& configuration);
