#pragma once

#include <QStringList>

struct ServiceConfiguration;

// Whether the arguments (without the program's name) are a command, rather than files or an address
// to open in the window.
bool isCommandLine(const QStringList& arguments);

// Runs the named command and returns the exit status. Needs a QGuiApplication, but no display.
int runCommandLine(const QStringList& arguments, const ServiceConfiguration& configuration);
