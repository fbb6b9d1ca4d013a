#include "studio/export/RenderCharge.h"

#include "account/AccountError.h"
#include "account/AccountSession.h"

#include <algorithm>

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

QStringList namesOf(const QList<RenderedOutput>& outputs)
{
    QStringList names;
    for (const RenderedOutput& output : outputs)
        names.append(output.item.id.toString(QUuid::WithoutBraces) + u' ' + output.fingerprint);
    return names;
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
    if (!isShort() || price <= account->balance())
        co_return false;
    // Credits may have been bought elsewhere meanwhile: asks the service for the balance.
    QCoro::Task<bool> refreshing = account->refreshSilently();
    co_await std::move(refreshing);
    co_return isShort();
}

QCoro::Task<RenderCharge> chargeRenders(QList<RenderedOutput> outputs, RenderAction action,
                                        ChargeServices services)
{
    const QPointer<AccountSession> account = services.account;
    const QPointer<CreditJournal> journal = services.journal;
    const QString payer =
        services.payer.isEmpty() && account ? account->accountKey() : services.payer;
    QList<RenderedOutput> unpaid = unpaidRenderedOutputs(outputs, services.payments());
    if (account && account->balance() < costOf(unpaid)) {
        // Asks the service for the balance: credits may have been bought elsewhere. During the
        // wait, other operations may pay for some of the renders.
        QCoro::Task<bool> refreshing = account->refreshSilently();
        co_await std::move(refreshing);
        unpaid = unpaidRenderedOutputs(outputs, services.payments());
    }
    RenderCharge charge;
    charge.cost = costOf(unpaid);
    const bool isSignedIn = account && !payer.isEmpty() && account->accountKey() == payer;
    if (!journal || (charge.cost > 0 && !isSignedIn)) {
        charge = refused(charge.cost);
        co_return std::move(charge);
    }
    charge.state = RenderCharge::State::tooFewCredits;
    if (charge.cost > 0 && account->balance() < charge.cost)
        co_return std::move(charge);
    charge.state = RenderCharge::State::notWanted;
    if (action.isWanted && !action.isWanted(charge.cost))
        co_return std::move(charge);
    const ChargedOperation operation = operationOf(action, services, outputs, unpaid);
    QCoro::Task<ChargeResult> charging = journal->run(operation);
    const ChargeResult result = co_await std::move(charging);
    charge = chargeOf(result, charge.cost);
    // A refusal for too few credits means that the known balance is outdated.
    const bool isNews = charge.state == RenderCharge::State::done ||
                        charge.refusal == ChargeResult::Refusal::tooFewCredits;
    if (account && isNews)
        account->refreshSilently();
    co_return std::move(charge);
}
