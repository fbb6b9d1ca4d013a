#include "service/store/Ledger.h"

#include "service/store/Database.h"
#include "service/store/Refusal.h"
#include "service/store/Texts.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int welcomeCredits = 10'000;
constexpr qsizetype ledgerLongestRequestId = 200;

struct Entry {
    QString kind;
    qint64 amount = 0;
    SqlValue requestId = {}, attempt = {};
    QString note;
};

void append(Transaction& transaction, qint64 account, const Entry& entry, qint64 now)
{
    transaction.run("INSERT INTO ledger_entry"
                    " (account, kind, amount, balance, request_id, attempt, note, created)"
                    " VALUES (?, ?, ?, ?, ?, ?, ?, ?)",
                    {account, entry.kind, entry.amount,
                     balance(transaction, account) + entry.amount, entry.requestId, entry.attempt,
                     entry.note, now});
}

// The latest reservation under a request identifier; `attempt` counts its reservations from 1.
struct Reservation {
    qint64 attempt = 0;
    qint64 cost = 0;
    bool isOpen = false;
};

std::optional<Reservation> lastReservation(Transaction& transaction, qint64 account,
                                           const QString& requestId)
{
    Rows found = transaction.rows(
        "SELECT attempt, -amount, NOT EXISTS (SELECT 1 FROM ledger_entry AS refund"
        "  WHERE refund.account = entry.account AND refund.request_id = entry.request_id"
        "  AND refund.attempt = entry.attempt AND refund.kind = 'refund')"
        " FROM ledger_entry AS entry WHERE account = ? AND request_id = ? AND kind = 'reserve'"
        " ORDER BY attempt DESC LIMIT 1",
        {account, requestId});
    if (!found.next())
        return std::nullopt;
    return Reservation{found.number(0), found.number(1), found.number(2) != 0};
}

void checkOperation(qint64 cost, const QString& requestId)
{
    if (cost < 1 || cost > largestCost)
        throw Refusal(400, "invalid_credit_request", u"cost must be 1 to 1000000"_s);
    if (requestId.isEmpty() || requestId.size() > ledgerLongestRequestId || !isPrintable(requestId))
        throw Refusal(400, "invalid_credit_request", u"requestId must be 1 to 200 characters"_s);
}

}    // namespace

qint64 balance(Transaction& transaction, qint64 account)
{
    Rows last = transaction.rows(
        "SELECT balance FROM ledger_entry WHERE account = ? ORDER BY id DESC LIMIT 1", {account});
    return last.next() ? last.number(0) : 0;
}

void addWelcome(Transaction& transaction, qint64 account, qint64 now)
{
    append(transaction, account,
           {.kind = u"welcome"_s,
            .amount = welcomeCredits,
            .note = u"Saldo local de prueba para cuentas nuevas"_s},
           now);
}

void addPurchase(Transaction& transaction, qint64 account, int credits, const QString& order,
                 qint64 now)
{
    if (balance(transaction, account) > largestBalance - credits)
        throw Refusal(400, "invalid_credit_amount", u"the balance would be too large"_s);
    append(transaction, account, {.kind = u"purchase"_s, .amount = credits, .note = order}, now);
}

void reserveCredits(Transaction& transaction, qint64 account, qint64 cost, const QString& requestId,
                    qint64 now)
{
    checkOperation(cost, requestId);
    const auto last = lastReservation(transaction, account, requestId);
    if (last && last->isOpen) {
        if (last->cost != cost)
            throw Refusal(400, "invalid_credit_request", u"reserved with another cost"_s);
        return;
    }
    if (balance(transaction, account) < cost)
        throw Refusal(402, "insufficient_credits");
    append(transaction, account,
           {.kind = u"reserve"_s,
            .amount = -cost,
            .requestId = requestId,
            .attempt = last ? last->attempt + 1 : 1,
            .note = {}},
           now);
}

void refundCredits(Transaction& transaction, qint64 account, qint64 cost, const QString& requestId,
                   qint64 now)
{
    checkOperation(cost, requestId);
    const auto last = lastReservation(transaction, account, requestId);
    if (!last || last->cost != cost)
        throw Refusal(409, "credit_not_reserved");
    if (!last->isOpen)
        return;
    append(transaction, account,
           {.kind = u"refund"_s,
            .amount = cost,
            .requestId = requestId,
            .attempt = last->attempt,
            .note = {}},
           now);
}

std::optional<int> reservedCost(Transaction& transaction, qint64 account, const QString& requestId)
{
    const auto last = lastReservation(transaction, account, requestId);
    return last && last->isOpen ? std::optional(int(last->cost)) : std::nullopt;
}

bool ledgerAddsUp(Transaction& transaction)
{
    Rows wrong = transaction.rows(
        "SELECT 1 FROM (SELECT account, sum(amount) AS total, max(id) AS last FROM ledger_entry"
        " GROUP BY account) AS sums JOIN ledger_entry ON id = last WHERE balance <> total LIMIT 1");
    return !wrong.next();
}
