#pragma once

#include <QStringList>

struct ServiceConfiguration;

// Whether these arguments (without the program's name) are for the command line and not for the
// window.
bool isCommandLine(const QStringList& arguments);

// Runs the command they name and gives the exit status. Needs a QGuiApplication, but no display.
int runCommandLine(const QStringList& arguments, const ServiceConfiguration& configuration);
