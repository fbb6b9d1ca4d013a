#pragma once

#include <QLoggingCategory>
#include <QString>

// What the program notes about itself, in a file that a user can hand to those who help him. Notes
// name kinds of work, numbers, durations and error codes, never texts, photos or people.
Q_DECLARE_LOGGING_CATEGORY(logProgram)    // start and end of the program
Q_DECLARE_LOGGING_CATEGORY(logWork)       // imports, exports, generations and other long work
Q_DECLARE_LOGGING_CATEGORY(logNetwork)    // requests and their answers

// Writes all messages of Qt and of the categories above to `file`, whose folder must exist, from
// information upward; what fails to be written is dropped. Above about 1 MiB, `file` becomes
// `file`.1 and the oldest one, `file`.2, goes. Several programs may write to the same file.
// `isVerbose`: writes also the messages for debugging, and everything to standard error too.
void startLog(const QString& file, bool isVerbose);

// The end of the log, oldest line first.
QStringList lastLogLines(const QString& file, int most);

// Replaces what may name somebody: e-mail addresses, absolute paths, queries of addresses, and the
// values of cookies, tokens and keys.
QString withoutPersonalData(QString text);
