#pragma once

#include "account/CreditJournal.h"
#include "studio/export/Payments.h"

class PreferencesStore;

// Renders that commands have paid for. They are stored in the preferences, by account, because a
// command has no workspace in which to store them.

// Fingerprints and pixel digests of all renders that commands have paid for with the account.
QSet<QString> paidRenders(const PreferencesStore& preferences, const QString& account);

// Payments that count all renders in `paid` as paid for each of the items.
Payments paymentsOf(const PublicationItems& items, const QSet<QString>& paid);

// Stores the outputs' renders as paid and calls `strike`, both in one transaction. Returns whether
// that succeeded.
bool addPaidRenders(PreferencesStore& preferences, const QString& account,
                    const QList<RenderedOutput>& outputs, const Strike& strike);
