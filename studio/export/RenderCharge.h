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
    QString payer;    // key of the paying account; empty: the one signed in once all is rendered
    std::function<Payments()> payments;    // current payments: other operations add some meanwhile
    // Stores the outputs as paid and strikes the journal entry, in one transaction. Returns whether
    // it is stored already.
    std::function<bool(const QList<RenderedOutput>& outputs, const Strike& strike)> record;
};

// An action on renders; costs credits for those that are not paid.
struct RenderAction {
    QString name;    // in the request identifier: "download"
    QString what;    // for the user, in a sentence about a refund: "una exportación"
    // Receives the final price in credits. False: the user does not want the action any more.
    std::function<bool(qint64 cost)> isWanted;
    std::function<QCoro::Task<bool>()> work;    // as in ChargedOperation, like alsoStore
    std::function<bool()> alsoStore = {};
};

struct Charge {
    qint64 cost = 0;                 // credits that were charged, or would have been
    bool isCharged = false;          // the credits were reserved
    bool isRefundPending = false;    // the credits come back later
    bool isRecorded = true;          // false: after a crash now, the next run would refund it
    QString reason;    // for the user: why the reservation failed, or what the work threw
    ChargeResult::Refusal refusal = ChargeResult::Refusal::other;
};

struct RenderCharge : Charge {
    enum class State { done, tooFewCredits, notReserved, notWanted, failed };

    State state = State::done;
};

// Whether the balance cannot suffice for the items whatever their pixels are. `price`: shown for
// them before, in credits.
QCoro::Task<bool> isOutOfReach(PublicationItems items, qint64 price, ChargeServices services);

// Charges for the outputs that are not paid, then does the action.
QCoro::Task<RenderCharge> chargeRenders(QList<RenderedOutput> outputs, RenderAction action,
                                        ChargeServices services);
