#pragma once

#include "studio/Activity.h"

#include <QDateTime>
#include <QObject>
#include <QStringList>

#include <chrono>
#include <functional>

// What a sentence tells: a warning is a problem that the user can go on with, an error the failure
// of what was asked for; `working` passes with the activity whose step it is.
enum class StatusKind { note, done, warning, error, working };

// Where a sentence leads.
struct StatusLink {
    QString folder = {};         // of the files that it tells of; empty for none
    bool isPurchase = false;     // of credits
    QStringList details = {};    // the names of what it only counts
    bool operator==(const StatusLink&) const = default;
};

struct StatusEntry {
    StatusKind kind = StatusKind::note;
    QString sentence = {};
    StatusLink link = {};
    QDateTime time = {};                                // local, when it was told
    std::chrono::steady_clock::time_point told = {};    // the same moment, for the entry's age
    std::optional<Activity::Kind> activity = {};        // of a `working` sentence
    bool isOutdated = false;                            // it says nothing of the present any more
    bool operator==(const StatusEntry&) const = default;
};

// Every sentence that the user was told. A sentence outdates those before it, but for the steps of
// an activity: when that ends, the sentence from before it is the newest again.
class StatusLog : public QObject {
    Q_OBJECT
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;
    using Calendar = std::function<QDateTime()>;

    // `clock` tells the age of sentences: the calendar may be set back.
    explicit StatusLog(Clock clock, Calendar calendar = &QDateTime::currentDateTime);

    // The newest that is not outdated; without a sentence where there is none.
    const StatusEntry& current() const;
    // The last fifty, oldest first. All steps of an activity are one entry.
    const QList<StatusEntry>& entries() const { return m_entries; }

    // An empty sentence only outdates the others.
    void tell(const QString& sentence, StatusKind kind = StatusKind::note,
              const StatusLink& link = {});
    // A step of the activity takes the place of the step before.
    void tellStep(Activity::Kind activity, const QString& sentence);
    // The activity is over: its step is outdated.
    void endSteps(Activity::Kind activity);
    // The batch was changed: what was told in an earlier turn of the event loop is outdated, but
    // for a problem that nobody can have read yet and a sentence that leads to names, which are
    // told nowhere else.
    void outdate();
    // The newest sentence tells a problem, and nobody can have read it yet.
    bool isProblemUnread() const;

Q_SIGNALS:
    void changed();

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
