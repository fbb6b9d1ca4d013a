#include "platform/HttpClient.h"

#include "platform/HttpExchange.h"

#include <QCoroSignal>

#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkProxy>

using namespace Qt::StringLiterals;

namespace {

// The system's, but never for this machine itself.
class SystemProxies final : public QNetworkProxyFactory {
public:
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery& query) override
    {
        return isLoopback(query.peerHostName()) ? QList{QNetworkProxy(QNetworkProxy::NoProxy)}
                                                : systemProxyForQuery(query);
    }
};

}    // namespace

bool isLoopback(const QString& host)
{
    return host.compare(u"localhost"_s, Qt::CaseInsensitive) == 0 ||
           QHostAddress(host).isLoopback();
}

HttpClient::HttpClient(QObject* parent)
    : QObject(parent), m_manager(new QNetworkAccessManager(this))
{
    m_manager->setProxyFactory(new SystemProxies);    // taken over
}

HttpClient::~HttpClient()
{
    // Whoever waits goes on, with an exception, while there still is something to come back to.
    const auto underWay = findChildren<HttpExchange*>(Qt::FindDirectChildrenOnly);
    for (HttpExchange* exchange : underWay)
        exchange->stop();
}

QCoro::Task<HttpReply> HttpClient::send(HttpRequest request, std::stop_token stop)
{
    auto* exchange = new HttpExchange(*m_manager, request, std::move(stop), this);
    request.body.reset();    // the exchange shares it
    if (!exchange->outcome())
        co_await qCoro(exchange, &HttpExchange::finished);
    HttpExchange::Outcome outcome = *exchange->outcome();
    exchange->deleteLater();
    if (const auto* failure = std::get_if<TransportError>(&outcome))
        throw *failure;
    co_return std::get<HttpReply>(std::move(outcome));
}
