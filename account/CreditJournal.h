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

// Removes an operation's entry from the journal. False: the preferences could not be changed.
using Strike = std::function<bool()>;

// Something that costs credits.
struct ChargedOperation {
    QString requestId;     // equal for equal work on equal items
    qint64 cost = 0;       // 0: nothing is charged
    QString what;          // for the user: "una exportación"
    QStringList covers;    // names of the renders it pays for; two operations must not share one
    // Called before the entry is written, in its transaction; may be empty. False: another run of
    // the program has paid meanwhile.
    std::function<bool()> isStillDue;
    // Does the work once the credits are reserved. False or an exception: it failed.
    std::function<QCoro::Task<bool>()> work;
    // Stores the result and calls `strike` in one transaction, now or as soon as that can be done.
    // Returns whether both are done now.
    std::function<bool(const Strike& strike)> record;
    // Stores more in the transaction that strikes the entry; may be empty. Called again in the next
    // transaction if one fails.
    std::function<bool()> alsoStore = {};
};

struct ChargeResult {
    enum class State { done, notReserved, failed };
    // Why the credits were not reserved.
    enum class Refusal { other, signedOut, tooFewCredits, unreachable };

    State state = State::done;
    bool isRefundPending = false;    // the credits come back later
    bool isRecorded = true;          // false: after a crash now, the next run would refund it
    QString error;    // for the user: why the reservation failed, or what the work threw
    Refusal refusal = Refusal::other;
};

// Sentences for the signals refunded() and lost().
QString refundSentence(qint64 credits, const QString& what);
QString lossSentence(qint64 credits, const QString& what);

// Charges credits: reserves them, does the work, then records the result or refunds the credits
// under the same request identifier. The preferences keep an entry from before the reservation is
// requested until it is recorded or refunded, so that after a crash the next run refunds it. The
// only charging code. Lives on the interface thread.
class CreditJournal : public QObject {
    Q_OBJECT
public:
    struct Times {
        // Pause between two attempts at a refund.
        std::chrono::milliseconds retry = std::chrono::seconds(30);
        // Pause between two searches for entries that other runs left open.
        std::chrono::milliseconds look = std::chrono::minutes(3);
        // By then a request that was sent has reached the service or is lost, and a denial that the
        // service repeats is final.
        std::chrono::milliseconds underWay = std::chrono::minutes(5);
    };

    // `account` and `preferences` outlive the journal. `runs`: a folder in which the runs of the
    // program with these preferences mark that they are going on.
    CreditJournal(CreditAccount& account, PreferencesStore& preferences, const QString& runs,
                  Times times, QObject* parent = nullptr);
    CreditJournal(CreditAccount& account, PreferencesStore& preferences, const QString& runs)
        : CreditJournal(account, preferences, runs, Times())
    {
    }

    ~CreditJournal() override;

    QCoro::Task<ChargeResult> run(ChargedOperation operation);

    // Refunds the signed-in account's open entries: those of runs that have ended and those that
    // this run could not refund. Starts by itself after each sign-in and at intervals; a call while
    // it runs waits for its end.
    QCoro::Task<> refundLeftOpen();

    // Called with the name of each step of an operation, so that a test can crash there. Code that
    // works for an operation calls reached() with steps of its own.
    std::function<void(const char* step)> stepReached;
    void reached(const char* step) const;

Q_SIGNALS:
    // Credits of an earlier operation came back.
    void refunded(qint64 credits, const QString& what);
    // Credits that the service had confirmed as reserved will not come back: it keeps denying the
    // reservation.
    void lost(qint64 credits, const QString& what);

private:
    enum class Refund {
        done,
        neverReserved,
        denied,         // the service denies a reservation that it had confirmed: asked again later
        lost,           // denied again after Times::underWay: given up
        refused,        // the service refuses this refund; that of the next entry may succeed
        unreachable,    // no answer: no refund can succeed now
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
    // Makes the function that removes `entry` (empty: nothing) and calls `operation.alsoStore`.
    Strike strikeOf(const ChargedOperation& operation, const QString& entry) const;
    bool isRecorded(const ChargedOperation& operation, const QString& entry) const;
    // Refunds an entry that this run has claimed or opened.
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
    QString m_accountKey;           // of the user signed in last
    QSet<QString> m_ownLeftOpen;    // entries of this run that wait for a refund
    bool m_isRefundingAll = false, m_isEnding = false;
    Completion m_refundedAll;
    QHash<QString, std::shared_ptr<Completion>> m_givingBack;    // refunds under way, by entry
    QTimer m_retry;
};
