#pragma once

#include <QString>

// Makes a text of the account service safe to show: cuts it to a limit and removes control
// characters. Joins all lines into one.
QString shownLine(const QString& text);
// Like shownLine(), but keeps the line breaks and has a higher limit.
QString shownText(const QString& text);

QString initialsOf(const QString& name);    // "LF"; a single letter for an e-mail address
QString firstNameOf(const QString& name);
QString creditsText(qint64 balance);    // "4280 créditos"
