#pragma once

#include <QByteArray>
#include <QString>

#include <cstdio>
#include <optional>

// One line, at once. Where people read it, on standard error or a terminal, it steers nothing.
void print(std::FILE* stream, const QString& line);

// Text from elsewhere on part of a line: short, without what would steer a terminal.
QString printable(const QString& text);

bool isTerminal(std::FILE* stream);

// A line that is not shown while it is typed; without a terminal, the next line of standard input.
// Nothing when it was cancelled, is too long or there is none.
std::optional<QByteArray> readSecret(const QString& prompt);
