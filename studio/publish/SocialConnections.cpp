#include "studio/publish/SocialConnections.h"

#include "account/AccountAPI.h"
#include "account/AccountError.h"
#include "account/AccountSession.h"
#include "studio/publish/PublishSentences.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

void SocialConnections::setAccount(AccountSession& account)
{
    m_account = &account;
}

void SocialConnections::setService(AccountAPI& api)
{
    m_api = &api;
}

const SocialNetworkConnection* SocialConnections::of(SocialPublishNetwork network) const
{
    const auto found = std::ranges::find_if(m_networks, [&](const SocialNetworkConnection& each) {
        return each.network.compare(row(network).rawValue, Qt::CaseInsensitive) == 0;
    });
    return found == m_networks.end() ? nullptr : &*found;
}

QString SocialConnections::sentence() const
{
    const auto connected = std::ranges::count_if(m_networks, &SocialNetworkConnection::isConnected);
    const auto missing = std::ranges::count_if(
        m_networks, [](const auto& network) { return !network.isProviderConfigured(); });
    if (connected > 0)
        return u"%1 red(es) conectada(s). Puedes publicar o conectar otra cuenta."_s.arg(connected);
    if (missing > 0)
        return u"%1 red(es) pendiente(s) de activar en el servidor de Moltiva."_s.arg(missing);
    return u"Conecta una red en %1 para poder publicar desde la app."_s.arg(
        m_api ? m_api->siteName() : QString());
}

void SocialConnections::forget()
{
    ++m_question;
    if (!std::exchange(m_networks, {}).isEmpty())
        Q_EMIT changed();
}

QCoro::Task<bool> SocialConnections::load()
{
    return loadFor(this);
}

QCoro::Task<bool> SocialConnections::loadFor(Self self)
{
    if (!self->m_api)
        co_return false;
    const int question = ++self->m_question;
    SocialStatusResponse status;
    QCoro::Task<SocialStatusResponse> asking = self->m_api->socialStatus();
    try {
        status = co_await std::move(asking);
    } catch (const std::exception&) {
        co_return false;
    }
    if (!self)
        co_return false;
    if (question == self->m_question) {    // else a newer question is under way
        self->m_networks = status.networks;
        Q_EMIT self->changed();
    }
    co_return true;
}

QCoro::Task<SocialConnections::Opening> SocialConnections::open(SocialPublishNetwork network)
{
    return openFor(this, network);
}

QCoro::Task<SocialConnections::Opening> SocialConnections::openFor(Self self,
                                                                   SocialPublishNetwork network)
{
    Opening opening;
    if (!self->m_api || !self->m_account)
        co_return opening;
    const QString name = rawValue(network);
    QUrl page;
    QCoro::Task<SocialConnectTokenResponse> asking = self->m_api->socialConnectToken(name);
    try {
        const SocialConnectTokenResponse response = co_await std::move(asking);
        page = response.url;
    } catch (const AccountError& error) {
        if (error.kind() == AccountError::Kind::unauthorized)
            opening.sentence = PublishSentences::signInBeforeConnecting(network);
        else if (error.text().contains(u"publicador") || error.text().contains(u"OAuth"))
            opening.sentence = error.text();
    } catch (const std::exception&) {
    }
    if (!self || !self->m_api || !self->m_account || !opening.sentence.isEmpty())
        co_return opening;
    if (page.isEmpty()) {
        QCoro::Task<Opening> openingPlain = openPlain(self, network);
        opening = co_await std::move(openingPlain);
        co_return opening;
    }
    opening.isOpened = self->m_account->openPage(page);
    opening.sentence =
        opening.isOpened ? u"Abriendo %1 para conectar %2. El enlace caduca en unos minutos."_s.arg(
                               self->m_api->siteName(), row(network).title)
                         : self->m_account->message();
    co_return opening;
}

QCoro::Task<SocialConnections::Opening> SocialConnections::openPlain(Self self,
                                                                     SocialPublishNetwork network)
{
    Opening opening;
    QCoro::Task<> locating = self->m_api->locate();
    try {
        co_await std::move(locating);
    } catch (const std::exception& error) {
        opening.sentence = readable(error);
    }
    if (!self || !self->m_api || !self->m_account || !opening.sentence.isEmpty())
        co_return opening;
    opening.isOpened =
        self->m_account->openPage(self->m_api->socialConnectionURL(rawValue(network)));
    opening.sentence = opening.isOpened
                           ? u"Abriendo conexión básica en %1."_s.arg(self->m_api->siteName())
                           : self->m_account->message();
    co_return opening;
}
