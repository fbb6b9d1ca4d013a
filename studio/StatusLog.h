#pragma once

#include "studio/Activity.h"

#include <QDateTime>
#include <QObject>
#include <QStringList>

#include <chrono>
#include <functional>

// Kind of a status sentence. `warning`: a problem, but the user can go on. `error`: what the user
// asked for has failed. `working`: progress of an activity, outdated when the activity ends.
enum class StatusKind { note, done, warning, error, working };

// What a sentence offers to do: about generated copy, or in answer to a question.
enum class StatusAction { retryCopy, recoverTexts, replaceEdited, changeAccount, keepAccount };

// What the buttons beside a status sentence open or do.
struct StatusLink {
    QString folder = {};         // contains the files that the sentence is about; empty: none
    bool isPurchase = false;     // opens the purchase of credits
    QStringList details = {};    // names of the files that the sentence only counts
    QList<StatusAction> actions = {};    // in the order in which they are shown
    bool operator==(const StatusLink&) const = default;
};

struct StatusEntry {
    StatusKind kind = StatusKind::note;
    QString sentence = {};
    StatusLink link = {};
    QDateTime time = {};                                // local time at which the user was told
    std::chrono::steady_clock::time_point told = {};    // the same moment, to measure its age
    std::optional<Activity::Kind> activity = {};        // set only if kind is StatusKind::working
    bool isOutdated = false;                            // no longer describes the present state
    bool operator==(const StatusEntry&) const = default;
};

// The status sentences told to the user. tell() marks the earlier sentences as outdated; tellStep()
// does not, so when the activity ends, the sentence from before it is current again.
class StatusLog : public QObject {
    Q_OBJECT
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;
    using Calendar = std::function<QDateTime()>;

    // `clock` measures the age of sentences, because `calendar` follows the system time, which may
    // be set back.
    explicit StatusLog(Clock clock, Calendar calendar = &QDateTime::currentDateTime);

    // The question that awaits an answer, else the newest sentence that is not outdated; an empty
    // entry if there is none.
    const StatusEntry& current() const;
    // The last fifty, oldest first. Each activity has only one entry, for its latest step.
    const QList<StatusEntry>& entries() const { return m_entries; }

    // Adds a sentence and outdates the earlier ones, except steps of activities. An empty sentence
    // is not added, but outdates as well.
    void tell(const QString& sentence, StatusKind kind = StatusKind::note,
              const StatusLink& link = {});
    // Asks a question, whose answers are the actions of `link`. It stays whatever is told, until
    // endQuestion(). Only one at a time: another one replaces it.
    void ask(const QString& question, const StatusLink& link);
    void endQuestion();
    // Adds a sentence on the progress of an activity, in place of the previous one about it.
    void tellStep(Activity::Kind activity, const QString& sentence);
    // Outdates the step of an activity that has ended.
    void endSteps(Activity::Kind activity);
    // Outdates the sentences after a change of the batch. Does nothing if tell() was called in the
    // same turn of the event loop, because that sentence is about the change. Spares steps of
    // activities, problems too recent to have been read, and sentences with StatusLink::details or
    // StatusLink::actions, which are shown nowhere else.
    void outdate();
    // Whether the current sentence is a problem too recent to have been read.
    bool isProblemUnread() const;

Q_SIGNALS:
    void changed();
    void told(const StatusEntry& entry);    // tell() was called with a non-empty sentence

private:
    bool isUnread(const StatusEntry& entry) const;
    void append(StatusEntry entry);
    template <typename Matches>
    bool outdateWhere(Matches matches);

    Clock m_clock;
    Calendar m_calendar;
    QList<StatusEntry> m_entries;
    std::optional<StatusEntry> m_question;
    bool m_isToldInThisTurn = false;
};
