#pragma once

#include <QString>

#include <optional>

class Transaction;

// Entries of credits are added and never changed. An account's balance is the sum of its entries,
// never negative. Callers commit the transaction.

inline constexpr qint64 largestBalance = 9'007'199'254'740'991;    // exact in any JSON reader
inline constexpr int largestCost = 1'000'000;

qint64 balance(Transaction& transaction, qint64 account);

void addWelcome(Transaction& transaction, qint64 account, qint64 now);
// Throws Refusal when the balance would exceed `largestBalance`.
void addPurchase(Transaction& transaction, qint64 account, int credits, const QString& order,
                 qint64 now);

// A request identifier is open from its reservation to its refund. Reserving an open one again with
// its cost, or refunding a refunded one again, changes nothing. Both throw Refusal: for another
// cost, for a balance that is too small, for a refund without a reservation.
void reserveCredits(Transaction& transaction, qint64 account, qint64 cost, const QString& requestId,
                    qint64 now);
void refundCredits(Transaction& transaction, qint64 account, qint64 cost, const QString& requestId,
                   qint64 now);
std::optional<int> reservedCost(Transaction& transaction, qint64 account, const QString& requestId);

// Whether each account's last balance is the sum of its entries.
bool ledgerAddsUp(Transaction& transaction);
