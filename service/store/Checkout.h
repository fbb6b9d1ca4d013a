#pragma once

#include "account/AccountRecords.h"

#include <QString>

#include <optional>

class Transaction;

enum class CheckoutState { open, paid, cancelled };

struct Checkout {
    QString id;
    qint64 account = 0;
    int credits = 0;
    CheckoutState state = CheckoutState::open;
};

struct Invoice {
    QString orderNumber, email, fullName;
    int credits = 0;
    int amountCents = 0;    // of a euro
    qint64 created = 0;
};

// 1000 credits are one euro.
int priceInCents(int credits);

// Gives the identifier, which nobody guesses: the page to pay belongs to who has it. Throws
// Refusal for an amount that is not sold.
QString startCheckout(Transaction& transaction, qint64 account, int credits, qint64 now);
std::optional<Checkout> checkoutWithId(Transaction& transaction, const QString& id);

// The credits come with the payment, whether or not it is ever confirmed. Nothing happens when it
// is not open any more.
void payCheckout(Transaction& transaction, const QString& id, qint64 now);
void cancelCheckout(Transaction& transaction, const QString& id);

// Newest first.
QList<PurchaseHistoryItem> purchases(Transaction& transaction, qint64 account, const QString& base);
std::optional<QUrl> invoiceAddress(Transaction& transaction, qint64 account,
                                   const QString& purchase, const QString& base);
std::optional<Invoice> invoiceWithId(Transaction& transaction, const QString& id);
