#pragma once

#include <QByteArray>
#include <QDir>
#include <QList>
#include <QString>

// Mails are not sent: they are stored as files in a folder, and a page of the service shows them.

struct MailEntry {
    QString name;    // of the mail's file
    QString to, subject, date;
    QString text;
};

// Returns whether the mail could be written. `to` must not hold line breaks.
bool storeMail(const QDir& folder, const QString& to, const QString& subject, const QString& text,
               qint64 now);

// The newest mails first, 50 at most.
QList<MailEntry> storedMails(const QDir& folder);
