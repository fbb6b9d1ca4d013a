#pragma once

#include <QString>

#include <optional>

class Transaction;

// Entries of the ledger are added and never changed. An account's balance is the sum of the amounts
// of its entries, and is never negative. Callers commit the transaction.

// 2^53 - 1: any JSON reader reads integers up to it exactly.
inline constexpr qint64 largestBalance = 9'007'199'254'740'991;
inline constexpr int largestCost = 1'000'000;

qint64 balance(Transaction& transaction, qint64 account);

void addWelcome(Transaction& transaction, qint64 account, qint64 now);
// Throws Refusal when the balance would exceed `largestBalance`.
void addPurchase(Transaction& transaction, qint64 account, int credits, const QString& order,
                 qint64 now);

// reserveCredits() takes `cost` from the balance under `requestId`, refundCredits() gives it back.
// Repeating either call changes nothing. After a refund, the same request may be reserved again.
// Both throw Refusal if `cost` differs from that of the reservation, reserveCredits() also if the
// balance is too small, refundCredits() also if there is no reservation.
void reserveCredits(Transaction& transaction, qint64 account, qint64 cost, const QString& requestId,
                    qint64 now);
void refundCredits(Transaction& transaction, qint64 account, qint64 cost, const QString& requestId,
                   qint64 now);
std::optional<int> reservedCost(Transaction& transaction, qint64 account, const QString& requestId);

// Whether each account's last balance is the sum of its entries.
bool ledgerAddsUp(Transaction& transaction);
