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
    int amountCents = 0;    // euro cents
    qint64 created = 0;
};

// 1000 credits are one euro.
int priceInCents(int credits);

// Returns the checkout's identifier, which cannot be guessed: whoever has it may open the page to
// pay. Throws Refusal for an amount that is not sold.
QString startCheckout(Transaction& transaction, qint64 account, int credits, qint64 now);
std::optional<Checkout> checkoutWithId(Transaction& transaction, const QString& id);

// Marks a checkout as paid, and adds its credits and its purchase at once: the buyer's program need
// not confirm it. Does nothing when the checkout is not open.
void payCheckout(Transaction& transaction, const QString& id, qint64 now);
void cancelCheckout(Transaction& transaction, const QString& id);

// The purchases of an account, newest first. `base` begins the addresses of their invoices.
QList<PurchaseHistoryItem> purchases(Transaction& transaction, qint64 account, const QString& base);
std::optional<QUrl> invoiceAddress(Transaction& transaction, qint64 account,
                                   const QString& purchase, const QString& base);
std::optional<Invoice> invoiceWithId(Transaction& transaction, const QString& id);
