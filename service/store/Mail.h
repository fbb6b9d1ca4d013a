#pragma once

#include <QByteArray>
#include <QDir>
#include <QList>
#include <QString>

// Mails are not sent: they lie as files in a folder, where a page shows them.

struct MailEntry {
    QString name;    // of the file
    QString to, subject, date;
    QString text;
};

// Whether it could be written. `to` holds no line breaks.
bool storeMail(const QDir& folder, const QString& to, const QString& subject, const QString& text,
               qint64 now);

// The newest first, at most fifty.
QList<MailEntry> storedMails(const QDir& folder);
