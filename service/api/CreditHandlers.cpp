#include "service/Handlers.h"
#include "service/Service.h"
#include "service/Visit.h"
#include "service/store/Checkout.h"
#include "service/store/Ledger.h"

using namespace Qt::StringLiterals;

namespace {

using CreditOperation = void(Transaction&, qint64, qint64, const QString&, qint64);

ServiceReply moved(Visit& visit, CreditOperation* operation)
{
    const auto given = wireBody<CreditOperationRequest>(visit, "invalid_credit_request");
    Transaction transaction(visit.service.database());
    operation(transaction, visit.account.id, given.cost, given.requestId, visit.service.now());
    CreditOperationResponse response;
    response.balance = balance(transaction, visit.account.id);
    response.cost = given.cost;
    response.ok = true;
    transaction.commit();
    return wireReply(response);
}

}    // namespace

ServiceReply reserve(Visit& visit)
{
    return moved(visit, reserveCredits);
}

ServiceReply refund(Visit& visit)
{
    return moved(visit, refundCredits);
}

ServiceReply startPurchase(Visit& visit)
{
    const auto given = wireBody<CheckoutRequest>(visit, "invalid_credit_amount");
    Transaction transaction(visit.service.database());
    const QString id =
        startCheckout(transaction, visit.account.id, given.credits, visit.service.now());
    transaction.commit();
    return wireReply(
        CheckoutStart{.url = QUrl(visit.request.base + u"/pago/"_s + id), .sessionId = id});
}

ServiceReply confirmPurchase(Visit& visit)
{
    const auto given = wireBody<CheckoutConfirmRequest>(visit, "checkout_not_recorded");
    Transaction transaction(visit.service.database());
    const auto checkout = checkoutWithId(transaction, given.sessionId);
    if (!checkout || checkout->account != visit.account.id)
        throw Refusal(404, "checkout_not_recorded");
    if (checkout->state != CheckoutState::paid)
        throw Refusal(402, "checkout_not_paid");
    CheckoutConfirmResponse response;
    response.ok = true;
    response.balance = balance(transaction, visit.account.id);
    return wireReply(response);
}

ServiceReply showPurchases(Visit& visit)
{
    Transaction transaction(visit.service.database());
    return wireReply(
        PurchaseHistoryResponse{purchases(transaction, visit.account.id, visit.request.base)});
}

ServiceReply showPurchaseLink(Visit& visit)
{
    Transaction transaction(visit.service.database());
    const auto address =
        invoiceAddress(transaction, visit.account.id, visit.request.query.value(u"purchaseId"_s),
                       visit.request.base);
    if (!address)
        throw Refusal(404, "invalid_purchase");
    return wireReply(PurchaseDocumentLinkResponse{*address});
}
