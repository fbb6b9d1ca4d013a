#pragma once

#include "platform/Completion.h"
#include "platform/ProgramRun.h"

#include <QCoroTask>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>

class CreditAccount;
class PreferencesStore;
struct OpenReservation;

// Removes the journal's entry of a charge from the preferences. False: it could not be done.
using Strike = std::function<bool()>;

// Something that costs credits.
struct ChargedOperation {
    QString requestId;    // the same for the same thing done to the same items
    qint64 cost = 0;      // 0: nothing is charged
    QString what;         // for the user: "una exportación"
    QStringList
        covers;    // names of what is paid for: nobody pays for one of them at the same time
    // Asked when nobody else can pay any more; may be empty. False: it was paid for meanwhile.
    std::function<bool()> isStillDue;
    // What is paid for, begun once the credits are reserved. False, or an exception: it failed.
    std::function<QCoro::Task<bool>()> work;
    // Stores what came of it and calls `strike`, both in one transaction, now or as soon as that
    // can be done; gives whether it is done now.
    std::function<bool(const Strike& strike)> record;
    // More to store when the entry is struck; may be empty. Like `strike` it is called again in the
    // next transaction where one could not be stored.
    std::function<bool()> alsoStore = {};
};

struct ChargeResult {
    enum class State { done, notReserved, failed };
    // What kept the credits from being reserved.
    enum class Refusal { other, signedOut, tooFewCredits, unreachable };

    State state = State::done;
    bool isRefundPending = false;    // what was charged comes back later
    bool isRecorded = true;          // else a crash now would count as a failure
    QString error;    // why nothing was reserved, or what the work threw; for the user
    Refusal refusal = Refusal::other;
};

// For the user, of what CreditJournal signals.
QString refundSentence(qint64 credits, const QString& what);
QString lossSentence(qint64 credits, const QString& what);

// The one place where credits are charged: reserve, work, then record the result or give back the
// credits under the same request identifier. A reservation is in the preferences before it is asked
// for and until it is settled, so that whatever ends the program, the next start gives back what
// was paid for nothing. Lives on the interface thread.
class CreditJournal : public QObject {
    Q_OBJECT
public:
    struct Times {
        // Between two attempts to give something back.
        std::chrono::milliseconds retry = std::chrono::seconds(30);
        // Between two looks for what other runs have left.
        std::chrono::milliseconds look = std::chrono::minutes(3);
        // After it a request that was sent has reached the service, or never will; and an answer
        // that contradicts an earlier one is no passing one any more.
        std::chrono::milliseconds underWay = std::chrono::minutes(5);
    };

    // Account and preferences outlive the journal. `runs`: a folder in which the runs of the
    // program that share the preferences tell each other apart.
    CreditJournal(CreditAccount& account, PreferencesStore& preferences, const QString& runs,
                  Times times, QObject* parent = nullptr);
    CreditJournal(CreditAccount& account, PreferencesStore& preferences, const QString& runs)
        : CreditJournal(account, preferences, runs, Times())
    {
    }

    ~CreditJournal() override;

    QCoro::Task<ChargeResult> run(ChargedOperation operation);

    // Gives back what was left open for the signed-in account by runs that have ended, or could not
    // be given back in this one. Starts by itself after each sign-in and from time to time; while
    // it goes on, another one only waits for it.
    QCoro::Task<> refundLeftOpen();
    bool hasNothingLeftOpen() const { return m_ownLeftOpen.isEmpty(); }

    // Called at each step of an operation, by name; for trying what a crash there would do. Whoever
    // works for an operation tells of its own.
    std::function<void(const char* step)> stepReached;
    void reached(const char* step) const;

Q_SIGNALS:
    // Credits came back that an earlier operation had left open.
    void refunded(qint64 credits, const QString& what);
    // Credits that the service had confirmed as reserved will not come back: it knows nothing of
    // them, again and again.
    void lost(qint64 credits, const QString& what);

private:
    enum class Refund {
        done,
        neverReserved,
        denied,    // the service does not find the reservation that it confirmed: asked again later
        lost,      // the same answer minutes later: given up
        refused,        // this one
        unreachable,    // like any other now
    };

    void accountChanged();
    QCoro::Task<ChargeResult> reserve(QString key, ChargedOperation operation);
    QCoro::Task<QString> freed(QString key, qint64 cost);
    QString open(const QString& key, const ChargedOperation& operation);
    bool isBeingPaid(const QStringList& what) const;
    template <typename Change>
    bool changeEntry(const QString& key, Change change);
    void noteReserved(const QString& key);
    void noteLate(const QString& key);
    double soon() const;
    // What strikes `entry`, if there is one, and stores what `operation` has beside it.
    Strike strikeOf(const ChargedOperation& operation, const QString& entry) const;
    bool isRecorded(const ChargedOperation& operation, const QString& entry) const;
    // Of an entry that this run works on.
    QCoro::Task<Refund> giveBack(QString key);
    QCoro::Task<Refund> askBack(QString key);
    static Refund refundAfter(const std::exception& error);
    Refund afterDenial(const QString& key, const OpenReservation& entry, double asked);
    static bool isPending(Refund refund);
    void endRefused(const QString& key);
    void strike(const QString& key);
    void leaveOpen(const QString& key);
    bool claim(const QString& key);
    bool isLeftOpen(const QString& key) const;
    QStringList keysLeftOpen() const;
    QCoro::Task<> refundAllLeftOpen();

    CreditAccount& m_account;
    PreferencesStore& m_preferences;
    ProgramRun m_run;
    const Times m_times;
    QString m_accountKey;           // of who was signed in last
    QSet<QString> m_ownLeftOpen;    // entries of this run that wait to be given back
    bool m_isSettling = false, m_isEnding = false;
    Completion m_refundedAll;
    QHash<QString, std::shared_ptr<Completion>> m_givingBack;    // the entries under way
    QTimer m_retry;
};
