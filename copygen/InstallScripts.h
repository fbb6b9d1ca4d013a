#pragma once

#include "copygen/LocalAIInstallation.h"

#include <QString>
#include <QStringList>

// A text between double quotes for bash: nothing in it ends the quotes or is expanded.
QString shellQuoted(const QString& text);

// The installers, as texts for /bin/bash. They write installation.gemmaProgressFile(). Their last
// line of output is the reason of a failure; exit statuses beside 1:
enum InstallExit {
    installLacksPython = 43,
    installLacksEngine = 44,
    installLacksRoom = 45,    // on the disk
    installWrongFile = 46,    // size or digest differ from the pinned ones
};

// Where package managers for macOS put Python.
QStringList defaultPythons();
// `pythons`: executables to try, in order.
QString mlxInstallScript(const LocalAIInstallation& installation,
                         const QStringList& pythons = defaultPythons());

QStringList defaultFetch();    // this program's own command
// `fetch`: a program with its first arguments, which takes an address, its size, its SHA-256 and
// where to put the file, as fetchPinned() does.
QString llamaInstallScript(const LocalAIInstallation& installation, const LlamaPins& pins,
                           const QStringList& fetch = defaultFetch());
