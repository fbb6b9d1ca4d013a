#include "platform/HttpClient.h"

#include "platform/HttpExchange.h"
#include "platform/Log.h"

#include <QElapsedTimer>

namespace {

// Leaves out the query, which may hold tokens, and the leading slash, which would look like a file.
QString notedName(const HttpRequest& request)
{
    return QString::fromLatin1(request.method) + u' ' + request.url.path(QUrl::FullyEncoded).mid(1);
}

void noteOutcome(const QString& name, const HttpExchange::Outcome& outcome, qint64 milliseconds)
{
    if (const auto* failure = std::get_if<TransportError>(&outcome)) {
        if (failure->kind() == TransportError::Kind::stopped)
            return;
        qCWarning(logNetwork).noquote()
            << name << "failed after" << milliseconds << "ms:" << failure->what();
        return;
    }
    const int status = std::get<HttpReply>(outcome).status;
    if (status >= 400)
        qCInfo(logNetwork).noquote() << name << status << "after" << milliseconds << "ms";
    else
        qCDebug(logNetwork).noquote() << name << status << "after" << milliseconds << "ms";
}

}    // namespace

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
    const QString name = notedName(request);
    QElapsedTimer watch;
    watch.start();
    auto* exchange = new HttpExchange(request, std::move(stop), this);
    request.body.reset();    // from here on, only the exchange holds the bytes
    co_await exchange->finished().wait();
    HttpExchange::Outcome outcome = exchange->outcome();
    exchange->deleteLater();
    noteOutcome(name, outcome, watch.elapsed());
    if (const auto* failure = std::get_if<TransportError>(&outcome))
        throw *failure;
    co_return std::get<HttpReply>(std::move(outcome));
}
