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

// Returns the checkout's identifier, which cannot be guessed: whoever has it may open the payment
// page. Throws Refusal for an amount that is not sold.
QString startCheckout(Transaction& transaction, qint64 account, int credits, qint64 now);
std::optional<Checkout> checkoutWithId(Transaction& transaction, const QString& id);

// Marks the checkout as paid and adds its purchase and credits immediately, without waiting for the
// buyer's program to confirm it. Does nothing unless the checkout is open.
void payCheckout(Transaction& transaction, const QString& id, qint64 now);
void cancelCheckout(Transaction& transaction, const QString& id);

// The purchases of an account, newest first. The addresses of their invoices begin with `base`, the
// address of the service.
QList<PurchaseHistoryItem> purchases(Transaction& transaction, qint64 account, const QString& base);
std::optional<QUrl> invoiceAddress(Transaction& transaction, qint64 account,
                                   const QString& purchase, const QString& base);
std::optional<Invoice> invoiceWithId(Transaction& transaction, const QString& id);
