#pragma once

#include "account/CreditJournal.h"
#include "studio/export/Payments.h"

#include <QCoroTask>
#include <QPointer>

#include <functional>

class AccountSession;

// What paying for renders works with. Account and journal may go while an operation runs.
struct ChargeServices {
    QPointer<AccountSession> account;
    QPointer<CreditJournal> journal;
    QString payer;    // key of the account; empty: whoever is signed in when all is rendered
    std::function<Payments()> payments;    // as of now: others pay, too
    // Stores that these are paid and strikes the entry, in one transaction. Gives whether it is
    // stored already.
    std::function<bool(const QList<RenderedOutput>& outputs, const Strike& strike)> record;
};

// What is done with renders, and costs what of them is not paid yet.
struct RenderAction {
    QString name;    // in the request identifier: "download"
    QString what;    // for the user, should it be given back: "una exportación"
    // Told the price in credits when it is final. False: the action is not wanted any more.
    std::function<bool(qint64 cost)> isWanted;
    std::function<QCoro::Task<bool>()> work;    // see ChargedOperation; likewise
    std::function<bool()> alsoStore = {};
};

// What an operation cost and what became of it.
struct Charge {
    qint64 cost = 0;                 // credits that were charged, or would have been
    bool isCharged = false;          // they were reserved
    bool isRefundPending = false;    // and come back later
    bool isRecorded = true;          // else a crash now would count as a failure
    QString reason;    // why nothing was reserved, or what the work threw; for the user
    ChargeResult::Refusal refusal = ChargeResult::Refusal::other;
};

struct RenderCharge : Charge {
    enum class State { done, tooFewCredits, notReserved, notWanted, failed };

    State state = State::done;
};

// Whether the account cannot pay for the items whatever their pixels turn out to be; `price`: in
// credits, that was shown for them.
QCoro::Task<bool> isOutOfReach(PublicationItems items, qint64 price, ChargeServices services);

// Has what is not paid yet of the outputs paid, and the action done.
QCoro::Task<RenderCharge> chargeRenders(QList<RenderedOutput> outputs, RenderAction action,
                                        ChargeServices services);
