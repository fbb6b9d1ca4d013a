#pragma once

#include "account/ConnectedAccount.h"
#include "cli/shared/ExitStatus.h"
#include "platform/PreferencesStore.h"
#include "platform/UserFolders.h"

#include <functional>
#include <optional>

// A command's connection to the account. It opens no browser.
class AccountConnection {
public:
    // `tell` receives sentences for the user: about a problem with the preferences' file, and about
    // refunded or lost credits of earlier commands.
    AccountConnection(const ServiceConfiguration& configuration,
                      const std::function<void(const QString& sentence)>& tell);

    AccountSession& session() { return m_account.session(); }
    CreditJournal& journal() { return m_account.journal(); }
    AccountAPI& api() { return m_account.api(); }
    PreferencesStore& preferences() { return m_preferences; }
    // Whether the session is stored in the preferences for later commands.
    bool isSessionKept() { return m_account.api().isSessionKept(); }

    struct SignInRefusal {
        ChargeResult::Refusal refusal = ChargeResult::Refusal::other;
        QString reason;    // sentence for the user
    };
    // Resumes the stored session. Nothing when somebody is signed in.
    std::optional<SignInRefusal> signIn();

    struct Networks {
        QList<SocialNetworkConnection> all;
        std::optional<SignInRefusal> refusal;    // set if they could not be asked for
    };
    Networks networks();

    // Waits until the credits that earlier commands left reserved have been refunded, as far as
    // that is possible.
    void refundLeftOpen();

private:
    PreferencesStore m_preferences{userDataFolder() + QStringLiteral("/moltiva.sqlite")};
    ConnectedAccount m_account;
};

ExitStatus statusOf(ChargeResult::Refusal refusal);
