#pragma once

#include <QString>

// How the screens write what the account service tells. All of it is somebody else's: one line
// without control characters, and only so long.
QString shownLine(const QString& text);
// The same, with its line breaks.
QString shownText(const QString& text);

QString initialsOf(const QString& name);    // "LF"; of an address its first letter
QString firstNameOf(const QString& name);
QString creditsText(qint64 balance);    // "4280 créditos"
