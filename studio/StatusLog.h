#pragma once

#include "studio/Activity.h"

#include <QDateTime>
#include <QObject>
#include <QStringList>

#include <chrono>
#include <functional>

// Kind of a sentence. `warning`: a problem that the user can go on with; `error`: what the user
// asked for has failed; `working`: a step of an activity, outdated when the activity ends.
enum class StatusKind { note, done, warning, error, working };

// What the button behind a sentence opens.
struct StatusLink {
    QString folder = {};         // of the files in the sentence; empty: none
    bool isPurchase = false;     // the purchase of credits
    QStringList details = {};    // the names that the sentence only counts
    bool operator==(const StatusLink&) const = default;
};

struct StatusEntry {
    StatusKind kind = StatusKind::note;
    QString sentence = {};
    StatusLink link = {};
    QDateTime time = {};                                // local time of tell()
    std::chrono::steady_clock::time_point told = {};    // the same moment, for the entry's age
    std::optional<Activity::Kind> activity = {};        // whose step a `working` sentence is
    bool isOutdated = false;                            // no longer true of the present
    bool operator==(const StatusEntry&) const = default;
};

// All sentences told to the user. A new sentence outdates the earlier ones. An activity's step does
// not: when the activity ends, the sentence from before it is current again.
class StatusLog : public QObject {
    Q_OBJECT
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;
    using Calendar = std::function<QDateTime()>;

    // `clock` tells the age of sentences: the calendar may be set back.
    explicit StatusLog(Clock clock, Calendar calendar = &QDateTime::currentDateTime);

    // The newest sentence that is not outdated; an empty entry if there is none.
    const StatusEntry& current() const;
    // The last fifty, oldest first. All steps of an activity are one entry.
    const QList<StatusEntry>& entries() const { return m_entries; }

    // An empty sentence only outdates the others.
    void tell(const QString& sentence, StatusKind kind = StatusKind::note,
              const StatusLink& link = {});
    // A step of the activity takes the place of the step before.
    void tellStep(Activity::Kind activity, const QString& sentence);
    // Outdates the activity's step: the activity is over.
    void endSteps(Activity::Kind activity);
    // Outdates what was told before this turn of the event loop, because the batch changed. Spares
    // a problem that is too new to have been read, and a sentence with names in its link, which are
    // told nowhere else.
    void outdate();
    // Whether the current sentence is a problem that is too new to have been read.
    bool isProblemUnread() const;

Q_SIGNALS:
    void changed();
    void told(const StatusEntry& entry);    // tell() was called with a sentence

private:
    bool isUnread(const StatusEntry& entry) const;
    void append(StatusEntry entry);
    template <typename Matches>
    bool outdateWhere(Matches matches);

    Clock m_clock;
    Calendar m_calendar;
    QList<StatusEntry> m_entries;
    bool m_isToldInThisTurn = false;
};
