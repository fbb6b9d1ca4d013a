#pragma once

#include "studio/export/RenderedOutput.h"

class PreferencesStore;

// What commands have paid for is remembered by account, since no workspace keeps their items.

// Fingerprints and pixels of all renders that the account has paid for.
QSet<QString> paidRenders(const PreferencesStore& preferences, const QString& account);

// Adds these and removes the preference `entry`, if there is one, in one transaction. Gives whether
// it is stored.
bool addPaidRenders(PreferencesStore& preferences, const QString& account,
                    const QList<RenderedOutput>& outputs, const QString& entry);
