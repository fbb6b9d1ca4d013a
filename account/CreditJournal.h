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
#include <optional>

class CreditAccount;
class PreferencesStore;
struct OpenReservation;

// Removes an operation's entry from the journal. Returns false if the preferences could not be
// changed.
using Strike = std::function<bool()>;

// Work that costs credits.
struct ChargedOperation {
    QString requestId;    // equal for equal work on equal items
    qint64 cost = 0;      // 0: nothing is charged
    QString what;         // the work in words for the user: "una exportación"
    // Names of the renders that the operation pays for; no two running operations may share one.
    QStringList covers;
    // Called in the transaction that writes the journal entry. Returns false if another process has
    // paid for the same renders meanwhile. May be empty.
    std::function<bool()> isStillDue;
    // Does the work, after the credits have been reserved. Returns false or throws if it failed.
    std::function<QCoro::Task<bool>()> work;
    // Stores the result and calls `strike`, both in one transaction. Returns whether that
    // succeeded; if not, may repeat it later by itself.
    std::function<bool(const Strike& strike)> record;
    // Stores further data in the transaction that removes the entry; called again if that
    // transaction is repeated. May be empty.
    std::function<bool()> alsoStore = {};
};

struct ChargeResult {
    enum class State { done, notReserved, failed };
    // Why the credits were not reserved. beingPaid: another operation pays for the same renders.
    // paidMeanwhile: see ChargedOperation::isStillDue.
    enum class Refusal {
        other,
        signedOut,
        tooFewCredits,
        unreachable,
        beingPaid,
        paidMeanwhile,
    };

    State state = State::done;
    bool isRefundPending = false;    // the refund has failed and is tried again later
    // False if the result is not stored yet: if the program crashed now, its next run would refund
    // the credits.
    bool isRecorded = true;
    QString error;    // for the user: why the reservation failed, or what the work threw
    Refusal refusal = Refusal::other;
};

// Spanish sentences for the signals CreditJournal::refunded() and lost().
QString refundSentence(qint64 credits, const QString& what);
QString lossSentence(qint64 credits, const QString& what);

// Charges credits: reserves them, does the work, then records the result or refunds the credits
// under the same request identifier. An entry in the preferences exists from before the reservation
// is requested until the result is recorded or the credits are refunded; after a crash, the next
// run of the program finds it and refunds the credits. No other code charges credits. Lives on the
// interface thread.
class CreditJournal : public QObject {
    Q_OBJECT
public:
    struct Times {
        // Pause between two attempts at a refund.
        std::chrono::milliseconds retry = std::chrono::seconds(30);
        // Pause between two searches for entries that other runs of the program left open.
        std::chrono::milliseconds look = std::chrono::minutes(3);
        // How long a sent request may take to reach the service. Also: how long the service must
        // deny a reservation that it had confirmed until the credits count as lost.
        std::chrono::milliseconds underWay = std::chrono::minutes(5);
    };

    // `account` and `preferences` must outlive the journal. `runs`: the folder in which all
    // processes with these preferences show by a ProgramRun that they are running.
    CreditJournal(CreditAccount& account, PreferencesStore& preferences, const QString& runs,
                  Times times, QObject* parent = nullptr);
    CreditJournal(CreditAccount& account, PreferencesStore& preferences, const QString& runs)
        : CreditJournal(account, preferences, runs, Times())
    {
    }

    ~CreditJournal() override;

    QCoro::Task<ChargeResult> run(ChargedOperation operation);

    // Whether a running operation of the signed-in account, in this process or another, pays for a
    // render that `matches`, or gives back what it paid. The renders have the names of
    // ChargedOperation::covers.
    bool isBeingPaid(const std::function<bool(const QString& render)>& matches) const;

    // This run of the program.
    ProgramRun& programRun() { return m_run; }

    // Refunds the signed-in account's open entries: those of processes that have ended, and those
    // that this one failed to refund. The journal itself calls it after each sign-in and at
    // intervals. A call during another one only waits for that one to end.
    QCoro::Task<> refundLeftOpen();

    // Called with the name of each step that an operation reaches, so that a test can end the
    // process there. ChargedOperation::work may call reached() for further steps.
    std::function<void(const char* step)> stepReached;
    void reached(const char* step) const;

Q_SIGNALS:
    // Credits of earlier operations have been refunded.
    void refunded(qint64 credits, const QString& what);
    // Credits will not be refunded: the service had confirmed their reservation, but now keeps
    // denying it.
    void lost(qint64 credits, const QString& what);

private:
    enum class Refund {
        done,
        neverReserved,
        denied,         // the service denies a reservation that it had confirmed: tried again later
        lost,           // denied again after Times::underWay: given up
        refused,        // the service refuses this refund; refunds of other entries may succeed
        unreachable,    // no answer, or not signed in: no other refund can succeed now
    };

    void accountChanged();
    QCoro::Task<ChargeResult> reserve(QString key, ChargedOperation operation);
    QCoro::Task<QString> refusalAfterEarlierCharge(QString key, qint64 cost);
    std::optional<ChargeResult> openEntry(const QString& key, const ChargedOperation& operation);
    template <typename Change>
    bool changeEntry(const QString& key, Change change);
    void noteReserved(const QString& key);
    void noteLate(const QString& key);
    double soon() const;
    // Makes a function that calls `operation.alsoStore` and removes the entry whose key is `entry`.
    // An empty key removes nothing.
    Strike strikeOf(const ChargedOperation& operation, const QString& entry) const;
    bool isRecorded(const ChargedOperation& operation, const QString& entry) const;
    // Refunds the entry of this key, which this run has opened or claimed.
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
    QString m_accountKey;           // m_account.accountKey() at the last changed()
    QSet<QString> m_ownLeftOpen;    // keys of this run's entries that wait for a refund
    bool m_isRefundingAll = false, m_isEnding = false;
    Completion m_refundedAll;
    QHash<QString, std::shared_ptr<Completion>> m_givingBack;    // refunds under way, by entry key
    QTimer m_retry;
};
