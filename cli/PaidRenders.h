#pragma once

#include "account/CreditJournal.h"
#include "studio/export/Payments.h"

class PreferencesStore;

// What commands have paid for is remembered by account, since no workspace keeps their items.

// Fingerprints and pixels of all renders that the account has paid for.
QSet<QString> paidRenders(const PreferencesStore& preferences, const QString& account);

// The same as payments of each of the items.
Payments paymentsOf(const PublicationItems& items, const QSet<QString>& paid);

// Adds these and calls `strike`, in one transaction. Gives whether it is stored.
bool addPaidRenders(PreferencesStore& preferences, const QString& account,
                    const QList<RenderedOutput>& outputs, const Strike& strike);
