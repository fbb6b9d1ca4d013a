#pragma once

#include "account/AccountAPI.h"
#include "account/AccountSession.h"
#include "account/CreditJournal.h"
#include "account/LocalService.h"

// The account session with its client, journal and local service: what a window or a command holds
// while it runs.
class ConnectedAccount {
public:
    // `preferences` outlives it. The local service, if one is needed, works in `dataFolder`.
    ConnectedAccount(const ServiceConfiguration& configuration, PreferencesStore& preferences,
                     const QString& dataFolder, AccountSession::Surroundings surroundings);

    AccountSession& session() { return m_session; }
    AccountAPI& api() { return m_api; }
    CreditJournal& journal() { return m_journal; }

private:
    // Declared in the order of use: each member is destroyed before those that it refers to.
    LocalService m_local;
    AccountAPI m_api;
    AccountSession m_session;
    CreditJournal m_journal;
};
