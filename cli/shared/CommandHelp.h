#pragma once

#include "cli/shared/ExitStatus.h"

#include <QCommandLineParser>
#include <QList>
#include <QString>

// What an exit status means to a command.
struct ExitMeaning {
    ExitStatus status = exitDone;
    QString meaning = {};    // empty: what the status means to every command
};

// Prints the help of a command on standard output: how it is called, its description and options as
// `parser` knows them, and its exit statuses.
void printCommandHelp(const QCommandLineParser& parser, const QString& usage,
                      const QList<ExitMeaning>& statuses);

// The section of a help that lists exit statuses. Begins with an empty line.
QString exitStatusHelp(const QList<ExitMeaning>& statuses);
