#pragma once

#include "account/CreditJournal.h"
#include "studio/export/Payments.h"

class PreferencesStore;

// Renders that commands have paid for, kept by account: no workspace keeps the items of a command.

// Fingerprints and pixels of all renders that the account has paid for.
QSet<QString> paidRenders(const PreferencesStore& preferences, const QString& account);

// Takes `paid` as payments of each of the items.
Payments paymentsOf(const PublicationItems& items, const QSet<QString>& paid);

// Adds the outputs' renders and calls `strike` in one transaction. Returns whether it was stored.
bool addPaidRenders(PreferencesStore& preferences, const QString& account,
                    const QList<RenderedOutput>& outputs, const Strike& strike);
