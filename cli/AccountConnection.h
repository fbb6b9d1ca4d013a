#pragma once

#include "account/ConnectedAccount.h"
#include "platform/PreferencesStore.h"
#include "platform/UserFolders.h"

#include <functional>

// A command's connection to the account. It opens no browser.
class AccountConnection {
public:
    // `tell` receives sentences for the user: about a problem with the preferences' file, and about
    // refunded or lost credits of earlier commands.
    AccountConnection(const ServiceConfiguration& configuration,
                      const std::function<void(const QString& sentence)>& tell);

    AccountSession& session() { return m_account.session(); }
    CreditJournal& journal() { return m_account.journal(); }
    PreferencesStore& preferences() { return m_preferences; }
    // Whether the session is stored in the preferences for later commands.
    bool isSessionKept() { return m_account.api().isSessionKept(); }

    // Waits until the credits that earlier commands left reserved have been refunded, as far as
    // that is possible.
    void refundLeftOpen();

private:
    PreferencesStore m_preferences{userDataFolder() + QStringLiteral("/moltiva.sqlite")};
    ConnectedAccount m_account;
};
