#include "studio/export/RenderCharge.h"

#include "account/AccountError.h"
#include "account/AccountSession.h"

#include <QCoroTimer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

qint64 costOf(const QList<RenderedOutput>& unpaid)
{
    return exportCreditCost * unpaid.size();
}

// The lowest possible price. An item with any payment may turn out to be paid when it is rendered;
// an item without one cannot.
qint64 leastCost(const PublicationItems& items, const Payments& payments)
{
    return exportCreditCost * std::ranges::count_if(items, [&](const PublicationItem& item) {
               return !payments.isAnyOf(item.id);
           });
}

QString nameBeginning(QUuid item)
{
    return item.toString(QUuid::WithoutBraces) + u' ';
}

// Names of renders for CreditJournal.
QStringList namesOf(const QList<RenderedOutput>& outputs)
{
    QStringList names;
    for (const RenderedOutput& output : outputs)
        names.append(nameBeginning(output.item.id) + output.fingerprint);
    return names;
}

// Whether another operation pays for a render of one of the items.
bool isAnyBeingPaid(const PublicationItems& items, const ChargeServices& services)
{
    return services.journal && services.journal->isBeingPaid([&](const QString& render) {
        return std::ranges::any_of(items, [&](const PublicationItem& item) {
            return render.startsWith(nameBeginning(item.id));
        });
    });
}

ChargedOperation operationOf(const RenderAction& action, const ChargeServices& services,
                             const QList<RenderedOutput>& outputs,
                             const QList<RenderedOutput>& unpaid)
{
    return {.requestId = creditRequestID(unpaid, action.name),
            .cost = costOf(unpaid),
            .what = action.what,
            .covers = namesOf(unpaid),
            .isStillDue =
                [payments = services.payments, unpaid] {
                    return unpaidRenderedOutputs(unpaid, payments()).size() == unpaid.size();
                },
            .work = action.work,
            .record = [record = services.record,
                       outputs](const Strike& strike) { return record(outputs, strike); },
            .alsoStore = action.alsoStore};
}

RenderCharge refused(qint64 cost)
{
    RenderCharge charge;
    charge.state = RenderCharge::State::notReserved;
    charge.cost = cost;
    charge.reason = AccountError::unauthorized().text();
    charge.refusal = ChargeResult::Refusal::signedOut;
    return charge;
}

RenderCharge::State stateOf(const ChargeResult& result)
{
    switch (result.state) {
    case ChargeResult::State::done:
        return RenderCharge::State::done;
    case ChargeResult::State::notReserved:
        return RenderCharge::State::notReserved;
    case ChargeResult::State::failed:
        return RenderCharge::State::failed;
    }
    Q_UNREACHABLE();
}

RenderCharge chargeOf(const ChargeResult& result, qint64 cost)
{
    RenderCharge charge;
    charge.state = stateOf(result);
    charge.cost = cost;
    charge.isCharged = cost > 0 && charge.state != RenderCharge::State::notReserved;
    charge.isRefundPending = result.isRefundPending;
    charge.isRecorded = result.isRecorded || !charge.isCharged;
    charge.reason = result.error;
    charge.refusal = result.refusal;
    return charge;
}

}    // namespace

QCoro::Task<bool> isOutOfReach(PublicationItems items, qint64 price, ChargeServices services)
{
    const QPointer<AccountSession> account = services.account;
    const qint64 least = leastCost(items, services.payments());
    const auto isShort = [account, least] {
        return account && account->isAuthenticated() && account->balance() < least;
    };
    // The price falls by what another operation pays, for which it may hold the missing credits.
    if (!isShort() || price <= account->balance() || isAnyBeingPaid(items, services))
        co_return false;
    // Credits may have been bought elsewhere meanwhile: asks the service for the balance.
    QCoro::Task<bool> refreshing = account->refreshSilently();
    co_await std::move(refreshing);
    co_return isShort();
}

QString Charge::refundNotice() const
{
    if (!isCharged)
        return {};
    return isRefundPending ? u" Los %1 créditos se devolverán al recuperar la conexión."_s.arg(cost)
                           : u" Se han devuelto los %1 créditos."_s.arg(cost);
}

QString Charge::reservationNotice() const
{
    if (!isRefundPending)
        return reason;
    return reason + u" Si se habían descontado, los %1 créditos se devolverán al recuperar la "
                    "conexión."_s.arg(cost);
}

namespace {

constexpr std::chrono::milliseconds pauseOfWaiting{150};

// State of one charge, shared by its coroutines.
struct ChargeRun {
    QList<RenderedOutput> outputs;
    RenderAction action;
    ChargeServices services;
    QString payer;

    QList<RenderedOutput> unpaid() const
    {
        return unpaidRenderedOutputs(outputs, services.payments());
    }
};
using SharedCharge = std::shared_ptr<ChargeRun>;

// Waits until no other operation pays for any of the renders. Returns false if the operation is
// not wanted any more.
QCoro::Task<bool> isFree(SharedCharge run)
{
    const QPointer<CreditJournal> journal = run->services.journal;
    const auto isPaying = [&] {
        const QStringList names = namesOf(run->unpaid());
        return journal->isBeingPaid([&](const QString& render) { return names.contains(render); });
    };
    while (journal && isPaying()) {
        if (run->action.waits && !run->action.waits())
            co_return false;
        QCoro::Task<> pausing = QCoro::sleepFor(pauseOfWaiting);
        co_await std::move(pausing);
    }
    co_return true;
}

// One attempt at the charge.
QCoro::Task<RenderCharge> chargeOnce(SharedCharge run)
{
    const QPointer<AccountSession> account = run->services.account;
    const QPointer<CreditJournal> journal = run->services.journal;
    QList<RenderedOutput> unpaid = run->unpaid();
    if (account && account->balance() < costOf(unpaid)) {
        // Asks the service for the balance: credits may have been bought elsewhere. During the
        // wait, other operations may pay for some of the renders.
        QCoro::Task<bool> refreshing = account->refreshSilently();
        co_await std::move(refreshing);
        unpaid = run->unpaid();
    }
    RenderCharge charge;
    charge.cost = costOf(unpaid);
    const bool isSignedIn = account && !run->payer.isEmpty() && account->accountKey() == run->payer;
    if (!journal || (charge.cost > 0 && !isSignedIn)) {
        charge = refused(charge.cost);
        co_return std::move(charge);
    }
    charge.state = RenderCharge::State::tooFewCredits;
    if (charge.cost > 0 && account->balance() < charge.cost)
        co_return std::move(charge);
    charge.state = RenderCharge::State::notWanted;
    if (run->action.isWanted && !run->action.isWanted(charge.cost))
        co_return std::move(charge);
    const ChargedOperation operation =
        operationOf(run->action, run->services, run->outputs, unpaid);
    QCoro::Task<ChargeResult> charging = journal->run(operation);
    const ChargeResult result = co_await std::move(charging);
    charge = chargeOf(result, charge.cost);
    co_return std::move(charge);
}

// Whether another operation has begun to pay, or has paid, since the price was determined.
bool isOvertaken(const RenderCharge& charge)
{
    return charge.state == RenderCharge::State::notReserved &&
           (charge.refusal == ChargeResult::Refusal::beingPaid ||
            charge.refusal == ChargeResult::Refusal::paidMeanwhile);
}

QCoro::Task<RenderCharge> chargeShared(SharedCharge run)
{
    RenderCharge charge;
    while (true) {
        QCoro::Task<bool> waiting = isFree(run);
        if (!co_await std::move(waiting)) {
            charge.state = RenderCharge::State::notWanted;
            co_return std::move(charge);
        }
        QCoro::Task<RenderCharge> charging = chargeOnce(run);
        charge = co_await std::move(charging);
        if (!isOvertaken(charge))
            break;
        QCoro::Task<> pausing = QCoro::sleepFor(pauseOfWaiting);
        co_await std::move(pausing);
    }
    // A refusal for too few credits means that the known balance is outdated.
    const bool isNews = charge.state == RenderCharge::State::done ||
                        charge.refusal == ChargeResult::Refusal::tooFewCredits;
    const QPointer<AccountSession> account = run->services.account;
    if (account && isNews)
        account->refreshSilently();
    co_return std::move(charge);
}

}    // namespace

QCoro::Task<RenderCharge> chargeRenders(QList<RenderedOutput> outputs, RenderAction action,
                                        ChargeServices services)
{
    const auto run = std::make_shared<ChargeRun>();
    run->payer = services.payer.isEmpty() && services.account ? services.account->accountKey()
                                                              : services.payer;
    run->outputs = std::move(outputs);
    run->action = std::move(action);
    run->services = std::move(services);
    return chargeShared(run);
}
