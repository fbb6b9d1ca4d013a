#include "studio/copy/CloudCopy.h"

#include "account/AccountError.h"
#include "account/AccountSession.h"

#include <QPointer>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace {

const QString isSwitchedOff = u"La IA en nube está desactivada en Tallerio."_s;

// State of one order, shared with the functions that the journal calls.
struct CloudCopyWork {
    CloudCopyOrder order;
    CloudAIService writer;
    CloudCopySteps steps;
    QString requestId;
    GeneratedCopy copy;
    bool isUnwanted = false;
};
using SharedWork = std::shared_ptr<CloudCopyWork>;

QCoro::Task<bool> generateInCloud(SharedWork work)
{
    if (work->order.stop.stop_requested())
        co_return false;
    work->steps.working(u"Generando textos con IA en la nube..."_s);
    const CloudCopyOrder& order = work->order;
    QCoro::Task<GeneratedCopy> writing = work->writer.analyze(
        order.photo, order.objective, order.format, work->requestId, order.stop);
    work->copy = co_await std::move(writing);
    work->isUnwanted = !work->steps.isWanted();
    co_return !work->isUnwanted;
}

QString refundNotice(const ChargeResult& charge, qint64 cost)
{
    if (cost == 0)
        return {};
    return charge.isRefundPending
               ? u" Los %1 créditos se devolverán al recuperar la conexión."_s.arg(cost)
               : u" Se han devuelto los %1 créditos."_s.arg(cost);
}

CopyOutcome::Remedy remedyOf(ChargeResult::Refusal refusal)
{
    switch (refusal) {
    case ChargeResult::Refusal::signedOut:
        return CopyOutcome::Remedy::signIn;
    case ChargeResult::Refusal::tooFewCredits:
        return CopyOutcome::Remedy::purchase;
    case ChargeResult::Refusal::other:
    case ChargeResult::Refusal::unreachable:
    case ChargeResult::Refusal::beingPaid:
    case ChargeResult::Refusal::paidMeanwhile:
        return CopyOutcome::Remedy::none;
    }
    Q_UNREACHABLE();
}

CloudCopyResult resultOf(const CloudCopyWork& work, const ChargeResult& charge, qint64 cost,
                         const AccountSession* account)
{
    using State = CloudCopyResult::State;
    CloudCopyResult result;
    switch (charge.state) {
    case ChargeResult::State::done:
        result.state = State::written;
        result.copy = work.copy;
        result.cost = cost;
        return result;
    case ChargeResult::State::notReserved:
        result.reason = charge.error;
        if (charge.isRefundPending) {
            result.reason += u" Si se habían descontado, los %1 créditos se devolverán al "
                             "recuperar la conexión."_s.arg(cost);
        }
        result.remedy = remedyOf(charge.refusal);
        break;
    case ChargeResult::State::failed:
        if (work.isUnwanted)
            result.state = State::unwanted;
        result.reason = charge.error + refundNotice(charge, cost);
        // The session may have ended, or the cloud been switched off, after the reservation.
        if (!account || !account->isAuthenticated())
            result.remedy = CopyOutcome::Remedy::signIn;
        break;
    }
    if (result.state == State::failed && work.order.stop.stop_requested()) {
        result.state = State::cancelled;
        result.reason = charge.isRefundPending ? refundNotice(charge, cost).trimmed() : QString();
    } else if (result.remedy != CopyOutcome::Remedy::none ||
               charge.error.startsWith(isSwitchedOff)) {
        result.state = State::impossible;
    }
    return result;
}

}    // namespace

QString whyNoCloudCopy(const AccountSession* account)
{
    if (!account)
        return AccountError::unauthorized().text();
    return account->cloudCopyConfig().enabled ? QString() : isSwitchedOff;
}

QCoro::Task<CloudCopyResult> writeCloudCopy(CloudCopyOrder order, CloudCopyServices services,
                                            CloudCopySteps steps)
{
    const QPointer<AccountSession> account = services.account;
    CloudCopyResult result;
    result.state = CloudCopyResult::State::impossible;
    result.reason = whyNoCloudCopy(account);
    if (!result.reason.isEmpty())
        co_return std::move(result);
    const auto work = std::make_shared<CloudCopyWork>();
    work->order = order;
    work->writer = services.writer;
    work->steps = steps;
    work->requestId = QUuid::createUuid().toString(QUuid::WithoutBraces);
    ChargedOperation operation;
    operation.requestId = work->requestId;
    operation.cost = account->cloudCopyConfig().costCredits;
    operation.what = u"una generación de textos"_s;
    operation.work = [work] { return generateInCloud(work); };
    operation.record = [work](const Strike& strike) {
        return work->steps.record(work->copy, strike);
    };
    const qint64 cost = operation.cost;
    steps.working(u"Reservando %1 créditos..."_s.arg(cost));
    QCoro::Task<ChargeResult> charging = services.journal->run(operation);
    const ChargeResult charge = co_await std::move(charging);
    result = resultOf(*work, charge, cost, account);
    co_return std::move(result);
}
