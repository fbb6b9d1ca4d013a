#pragma once

#include "account/AccountAPI.h"
#include "account/AccountSession.h"
#include "account/CreditJournal.h"
#include "account/LocalService.h"

// The account session with the client, the journal and the local service that it works with. A
// window or a command owns one while it runs.
class ConnectedAccount {
public:
    // `preferences` must outlive this object. The local service and the journal keep their files in
    // sub-folders of `dataFolder`.
    ConnectedAccount(const ServiceConfiguration& configuration, PreferencesStore& preferences,
                     const QString& dataFolder, AccountSession::Surroundings surroundings);

    AccountSession& session() { return m_session; }
    AccountAPI& api() { return m_api; }
    CreditJournal& journal() { return m_journal; }

private:
    // The order matters: each member is destroyed before those above it, to which it refers.
    LocalService m_local;
    AccountAPI m_api;
    AccountSession m_session;
    CreditJournal m_journal;
};
