#pragma once

#include <QString>
#include <QStringList>

#include <optional>

class PreferencesStore;

// An entry of the journal in the preferences: a reservation of credits that is neither refunded nor
// used up by finished work.
struct OpenReservation {
    QString requestId, account;
    QString what;               // the work in words for the user: "una exportación"
    QString run;                // ProgramRun::name() of the process that works on it; empty: none
    qint64 cost = 0;            // credits
    bool isReserved = false;    // the service confirmed it, and has not refunded it since
    // In ms since the epoch; until then the request for the reservation may still reach the
    // service.
    double lateUntil = 0;
    double lateBefore = 0;    // `lateUntil` of the entry that this one replaced
    QStringList covers;       // names of the renders that it pays for
    // When the service first denied the reservation after confirming it: ms since the epoch, or 0.
    double deniedAt = 0;
};

inline constexpr QStringView entryPrefix = u"moltiva.creditReservation.";

// Beginning of the preferences keys of all entries of one account.
QString keyPrefixOf(const QString& account);
// Returns nothing for a missing or damaged entry.
std::optional<OpenReservation> entryAt(const QString& key, const PreferencesStore& preferences);
QByteArray writtenEntry(const OpenReservation& entry);
