#pragma once

#include "account/CreditJournal.h"
#include "studio/export/Payments.h"

#include <QCoroTask>
#include <QPointer>

#include <functional>

class AccountSession;

// What charging for renders needs. Account and journal may be destroyed while it runs.
struct ChargeServices {
    QPointer<AccountSession> account;
    QPointer<CreditJournal> journal;
    QString payer;    // key of the account; empty: whoever is signed in when all is rendered
    std::function<Payments()> payments;    // as of now: others pay, too
    // Stores the payment of `outputs` and calls `strike`, in one transaction; gives whether that is
    // stored already.
    std::function<bool(const QList<RenderedOutput>& outputs, const Strike& strike)> record;
};

// What is done with renders once the unpaid ones among them are paid.
struct RenderAction {
    QString name;    // in the request identifier: "download"
    QString what;    // as a sentence about its refund calls it: "una exportación"
    // Called with the final price in credits; false ends the operation before anything is charged.
    // May be empty.
    std::function<bool(qint64 cost)> isWanted;
    std::function<QCoro::Task<bool>()> work;    // see ChargedOperation::work
    std::function<bool()> alsoStore = {};       // see ChargedOperation::alsoStore
};

struct Charge {
    qint64 cost = 0;                 // credits that were charged, or would have been
    bool isCharged = false;          // the credits were reserved
    bool isRefundPending = false;    // the credits come back later
    bool isRecorded = true;          // false: the payment is not stored yet
    QString reason;    // why nothing was reserved, or what the work threw; for the user
    ChargeResult::Refusal refusal = ChargeResult::Refusal::other;
};

struct RenderCharge : Charge {
    enum class State { done, tooFewCredits, notReserved, notWanted, failed };

    State state = State::done;
};

// Whether the account cannot pay for `items` even when every render that may be free is; `price`:
// the credits that were shown for them.
QCoro::Task<bool> isOutOfReach(PublicationItems items, qint64 price, ChargeServices services);

// Charges the unpaid ones among `outputs` and has the action work.
QCoro::Task<RenderCharge> chargeRenders(QList<RenderedOutput> outputs, RenderAction action,
                                        ChargeServices services);
