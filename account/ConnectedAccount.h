#pragma once

#include "account/AccountAPI.h"
#include "account/AccountSession.h"
#include "account/CreditJournal.h"
#include "account/LocalService.h"

// The session over the service that is configured, with all that it needs: what a window or a
// command holds while it runs.
class ConnectedAccount {
public:
    // The preferences outlive it. The local service, should it be needed, works in `dataFolder`.
    ConnectedAccount(const ServiceConfiguration& configuration, PreferencesStore& preferences,
                     const QString& dataFolder, AccountSession::Surroundings surroundings);

    AccountSession& session() { return m_session; }
    AccountAPI& api() { return m_api; }
    CreditJournal& journal() { return m_journal; }

private:
    // Each is gone before those that it uses.
    LocalService m_local;
    AccountAPI m_api;
    AccountSession m_session;
    CreditJournal m_journal;
};
