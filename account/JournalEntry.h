#pragma once

#include <QString>
#include <QStringList>

#include <optional>

class PreferencesStore;

// A reservation of credits that is neither refunded nor paid out for finished work, as the journal
// stores it in the preferences.
struct OpenReservation {
    QString requestId, account;
    QString what;               // what it pays for, for the user
    QString run;                // the run of the program that works on it
    qint64 cost = 0;            // credits
    bool isReserved = false;    // the service confirmed it, and has not refunded it since
    double lateUntil = 0;       // ms since the epoch; the reservation may still arrive until then
    double lateBefore = 0;      // `lateUntil` of the entry that this one replaced
    QStringList covers;         // names of the renders that it pays for
    // When the service first denied the reservation after confirming it: ms since the epoch, 0:
    // never.
    double deniedAt = 0;
};

inline constexpr QStringView entryPrefix = u"moltiva.creditReservation.";

// Beginning of the keys of all entries of one account.
QString keyPrefixOf(const QString& account);
// Nothing for a missing or damaged entry.
std::optional<OpenReservation> entryAt(const QString& key, const PreferencesStore& preferences);
QByteArray writtenEntry(const OpenReservation& entry);
