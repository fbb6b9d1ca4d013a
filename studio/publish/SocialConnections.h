#pragma once

#include "account/AccountRecords.h"
#include "model/SocialPublishNetwork.h"

#include <QCoroTask>
#include <QObject>
#include <QPointer>

class AccountAPI;
class AccountSession;

// The networks of the signed-in user as the web site knows them, and the flow that connects one in
// the browser.
class SocialConnections : public QObject {
    Q_OBJECT
public:
    // Until both are set, nothing can be asked for or opened.
    void setAccount(AccountSession& account);
    void setService(AccountAPI& api);

    const QList<SocialNetworkConnection>& all() const { return m_networks; }
    // Null while unknown.
    const SocialNetworkConnection* of(SocialPublishNetwork network) const;
    QString sentence() const;    // about all of them, for the user

    // Asks for the networks anew. Returns false if that failed.
    QCoro::Task<bool> load();
    // The networks and an answer under way are somebody else's.
    void forget();

    struct Opening {
        bool isOpened = false;
        QString sentence = {};    // for the user; empty if nothing could be asked for
    };
    // Opens the page in the browser where the user connects the network.
    QCoro::Task<Opening> open(SocialPublishNetwork network);

Q_SIGNALS:
    void changed();    // the networks

private:
    using Self = QPointer<SocialConnections>;
    static QCoro::Task<bool> loadFor(Self self);
    static QCoro::Task<Opening> openFor(Self self, SocialPublishNetwork network);
    static QCoro::Task<Opening> openPlain(Self self, SocialPublishNetwork network);

    QPointer<AccountSession> m_account;
    QPointer<AccountAPI> m_api;
    QList<SocialNetworkConnection> m_networks;
    int m_question = 0;    // number of the last request for m_networks
};
