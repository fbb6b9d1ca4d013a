#pragma once

#include <QByteArray>
#include <QString>

#include <cstdio>
#include <optional>

// Prints one line and flushes it. Replaces control characters on standard error and on a terminal.
void print(std::FILE* stream, const QString& line);

// Makes text from outside safe to print as part of a line: shortens it and removes control
// characters.
QString printable(const QString& text);

bool isTerminal(std::FILE* stream);

// Reads a line that is not shown while typed; without a terminal, the next line of standard input.
// Returns nothing at the end of the input, or if the line is too long.
std::optional<QByteArray> readSecret(const QString& prompt);
