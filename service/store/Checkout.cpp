#include "service/store/Checkout.h"

#include "service/store/Database.h"
#include "service/store/Ledger.h"
#include "service/store/Refusal.h"
#include "service/store/Secrets.h"
#include "service/store/Texts.h"

#include <QUuid>

using namespace Qt::StringLiterals;

namespace {

constexpr int block = 1000, most = 1'000'000;    // credits
constexpr int centsPerBlock = 100;

QString orderNumber(qint64 number, qint64 created)
{
    // Takes the year in local time, like the date on the invoice.
    return u"MOL-%1-%2"_s.arg(QDateTime::fromMSecsSinceEpoch(created).date().year())
        .arg(number, 6, 10, QLatin1Char('0'));
}

QUrl invoiceUrl(const QString& base, const QString& invoice)
{
    return QUrl(base + u"/factura/"_s + invoice);
}

CheckoutState stateFromStored(const QString& name)
{
    return name == u"paid"        ? CheckoutState::paid
           : name == u"cancelled" ? CheckoutState::cancelled
                                  : CheckoutState::open;
}

}    // namespace

int priceInCents(int credits)
{
    return credits / block * centsPerBlock;
}

QString startCheckout(Transaction& transaction, qint64 account, int credits, qint64 now)
{
    if (credits < block || credits > most || credits % block != 0)
        throw Refusal(400, "invalid_credit_amount", u"1000 to 1000000 in blocks of 1000"_s);
    if (balance(transaction, account) > largestBalance - credits)
        throw Refusal(400, "invalid_credit_amount", u"the balance would be too large"_s);
    QString id = QString::fromLatin1(newToken());
    transaction.run(
        "INSERT INTO checkout (id, account, credits, state, created) VALUES (?, ?, ?, 'open', ?)",
        {id, account, qint64(credits), now});
    return id;
}

std::optional<Checkout> checkoutWithId(Transaction& transaction, const QString& id)
{
    Rows found =
        transaction.rows("SELECT account, credits, state FROM checkout WHERE id = ?", {id});
    if (!found.next())
        return std::nullopt;
    return Checkout{id, found.number(0), int(found.number(1)), stateFromStored(found.text(2))};
}

void payCheckout(Transaction& transaction, const QString& id, qint64 now)
{
    const auto checkout = checkoutWithId(transaction, id);
    if (!checkout || checkout->state != CheckoutState::open)
        return;
    transaction.run("UPDATE checkout SET state = 'paid' WHERE id = ?", {id});
    transaction.run("INSERT INTO purchase (id, account, checkout, credits, amount_cents, created,"
                    " invoice) VALUES (?, ?, ?, ?, ?, ?, ?)",
                    {QUuid::createUuid().toString(QUuid::WithoutBraces), checkout->account, id,
                     qint64(checkout->credits), qint64(priceInCents(checkout->credits)), now,
                     QString::fromLatin1(newToken())});
    addPurchase(transaction, checkout->account, checkout->credits,
                orderNumber(transaction.lastId(), now), now);
}

void cancelCheckout(Transaction& transaction, const QString& id)
{
    transaction.run("UPDATE checkout SET state = 'cancelled' WHERE id = ? AND state = 'open'",
                    {id});
}

QList<PurchaseHistoryItem> purchases(Transaction& transaction, qint64 account, const QString& base)
{
    QList<PurchaseHistoryItem> items;
    Rows found =
        transaction.rows("SELECT id, number, credits, amount_cents, created, invoice,"
                         " row_number() OVER (ORDER BY number) FROM purchase WHERE account = ?"
                         " ORDER BY number DESC",
                         {account});
    while (found.next()) {
        PurchaseHistoryItem item;
        item.id = found.text(0);
        item.kind = u"credits"_s;
        item.orderIndex = int(found.number(6));
        item.orderNumber = orderNumber(found.number(1), found.number(4));
        item.createdAt = isoTime(found.number(4));
        item.amountCents = int(found.number(3));
        item.detail = u"%1 créditos"_s.arg(found.number(2));
        item.invoiceURL = invoiceUrl(base, found.text(5));
        items.append(item);
    }
    return items;
}

std::optional<QUrl> invoiceAddress(Transaction& transaction, qint64 account,
                                   const QString& purchase, const QString& base)
{
    Rows found = transaction.rows("SELECT invoice FROM purchase WHERE account = ? AND id = ?",
                                  {account, purchase});
    if (!found.next())
        return std::nullopt;
    return invoiceUrl(base, found.text(0));
}

std::optional<Invoice> invoiceWithId(Transaction& transaction, const QString& id)
{
    Rows found = transaction.rows(
        "SELECT number, email, coalesce(full_name, ''), credits, amount_cents, purchase.created"
        " FROM purchase JOIN account ON account.id = purchase.account WHERE invoice = ?",
        {id});
    if (!found.next())
        return std::nullopt;
    return Invoice{orderNumber(found.number(0), found.number(5)),
                   found.text(1),
                   found.text(2),
                   int(found.number(3)),
                   int(found.number(4)),
                   found.number(5)};
}
