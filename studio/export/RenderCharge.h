#pragma once

#include "account/CreditJournal.h"
#include "studio/export/Payments.h"

#include <QCoroTask>
#include <QPointer>

#include <functional>

class AccountSession;

// What charging for renders needs. Account and journal may be destroyed while a charge is under
// way.
struct ChargeServices {
    QPointer<AccountSession> account;
    QPointer<CreditJournal> journal;
    // AccountSession::accountKey() of the user who pays; empty: the user signed in when
    // chargeRenders() is called.
    QString payer;
    std::function<Payments()> payments;    // the payments known now; other operations may add some
    // Stores the payment of `outputs` and calls `strike` in one transaction, now or as soon as
    // possible. Returns whether both are done now.
    std::function<bool(const QList<RenderedOutput>& outputs, const Strike& strike)> record;
};

// What to do with renders after the unpaid ones among them were charged.
struct RenderAction {
    QString name;    // part of the request identifier, such as "download"
    QString what;    // for sentences about a refund: "una exportación"
    // Called with the final price in credits before charging; returns false to end the operation
    // without a charge. May be empty.
    std::function<bool(qint64 cost)> isWanted;
    // Called now and then while another operation pays for some of the renders; returns false to
    // end the operation without a charge. May be empty.
    std::function<bool()> waits;
    std::function<QCoro::Task<bool>()> work;    // see ChargedOperation::work
    std::function<bool()> alsoStore = {};       // see ChargedOperation::alsoStore
};

struct Charge {
    qint64 cost = 0;                 // credits charged, or that would have been
    bool isCharged = false;          // the credits were reserved
    bool isRefundPending = false;    // the credits will come back later
    bool isRecorded = true;          // false: the payment is not stored yet
    QString reason;    // for the user: why nothing was reserved, or the error in the work
    ChargeResult::Refusal refusal = ChargeResult::Refusal::other;

    // What became of the credits after the work failed, as a sentence that follows another one;
    // empty if nothing was charged.
    QString refundNotice() const;
    // The reason why nothing was reserved, for the user.
    QString reservationNotice() const;
};

// For the user, while RenderAction::waits is called.
inline const QString waitsForPayment =
    QStringLiteral("Esperando a que termine otro pago de las mismas imágenes…");

struct RenderCharge : Charge {
    enum class State { done, tooFewCredits, notReserved, notWanted, failed };

    State state = State::done;
};

// Whether the account cannot pay for `items`, even if all those with an earlier payment turn out to
// be paid. `price`: the price shown to the user, in credits.
QCoro::Task<bool> isOutOfReach(PublicationItems items, qint64 price, ChargeServices services);

// Charges for the unpaid ones among `outputs`, then runs `action.work`. While another operation
// pays for some of them, waits for its end and determines the price anew.
QCoro::Task<RenderCharge> chargeRenders(QList<RenderedOutput> outputs, RenderAction action,
                                        ChargeServices services);
