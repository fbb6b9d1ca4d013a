#pragma once

#include <QString>

// Texts from the account service as the screens show them: foreign text, so cut to a limit and
// without control characters. shownLine() puts all on one line.
QString shownLine(const QString& text);
// Keeps the line breaks.
QString shownText(const QString& text);

QString initialsOf(const QString& name);    // "LF"; for an e-mail address its first letter
QString firstNameOf(const QString& name);
QString creditsText(qint64 balance);    // "4280 créditos"
