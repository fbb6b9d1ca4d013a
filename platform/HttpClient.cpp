#include "platform/HttpClient.h"

#include "platform/HttpExchange.h"

HttpClient::HttpClient(QObject* parent) : QObject(parent) {}

HttpClient::~HttpClient()
{
    // Makes the coroutines in send() resume with an exception while their exchanges still exist.
    const auto underWay = findChildren<HttpExchange*>(Qt::FindDirectChildrenOnly);
    for (HttpExchange* exchange : underWay)
        exchange->stop();
}

QCoro::Task<HttpReply> HttpClient::send(HttpRequest request, std::stop_token stop)
{
    auto* exchange = new HttpExchange(request, std::move(stop), this);
    request.body.reset();    // from here on, only the exchange holds the bytes
    co_await exchange->finished().wait();
    HttpExchange::Outcome outcome = exchange->outcome();
    exchange->deleteLater();
    if (const auto* failure = std::get_if<TransportError>(&outcome))
        throw *failure;
    co_return std::get<HttpReply>(std::move(outcome));
}
