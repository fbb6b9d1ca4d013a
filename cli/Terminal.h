#pragma once

#include <QByteArray>
#include <QString>

#include <cstdio>
#include <optional>

// Prints one line and flushes it. Replaces control characters on standard error and on a terminal.
void print(std::FILE* stream, const QString& line);

// Foreign text for a part of a line: shortened, without terminal control characters.
QString printable(const QString& text);

bool isTerminal(std::FILE* stream);

// Reads a line that is not shown while typed; without a terminal, the next line of standard input.
// Empty when cancelled, too long or at the end of the input.
std::optional<QByteArray> readSecret(const QString& prompt);
