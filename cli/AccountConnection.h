#pragma once

#include "account/ConnectedAccount.h"
#include "platform/PreferencesStore.h"
#include "platform/UserFolders.h"

#include <functional>

// The account of a command, which opens no browser.
class AccountConnection {
public:
    // `tell` is given a sentence about what was found in the place of the preferences, and about
    // credits that came back from an earlier command.
    AccountConnection(const ServiceConfiguration& configuration,
                      const std::function<void(const QString& sentence)>& tell);

    AccountSession& session() { return m_account.session(); }
    CreditJournal& journal() { return m_account.journal(); }
    PreferencesStore& preferences() { return m_preferences; }
    // Later commands have the session too.
    bool isSessionKept() { return m_account.api().isSessionKept(); }

    // Waits until what earlier commands left open has come back, as far as it can.
    void refundLeftOpen();

private:
    PreferencesStore m_preferences{userDataFolder() + QStringLiteral("/moltiva.sqlite")};
    ConnectedAccount m_account;
};
