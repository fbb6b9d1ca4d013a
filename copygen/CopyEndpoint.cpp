#include "copygen/CopyEndpoint.h"

#include "account/ImagePayload.h"
#include "copygen/AnswerShape.h"
#include "copygen/text/ChatCompletion.h"
#include "platform/HttpExchange.h"
#include "platform/photo/ImageAccess.h"

#include <QCoroTask>
#include <QSettings>

using namespace Qt::StringLiterals;

namespace {

constexpr int longestShownSide = 1536;           // pixels
constexpr qint64 largestReply = 4 << 20;         // bytes
constexpr int succeeded = 200, refused = 400;    // HTTP

bool isOnThisMachine(const QUrl& url)
{
    return url.isValid() && url.userInfo().isEmpty() && isLoopback(url.host()) &&
           (url.scheme() == u"http"_s || url.scheme() == u"https"_s);
}

// QCoro::waitFor() waits for ever for a task that throws; this one does not.
QCoro::Task<> ended(HttpExchange& exchange)
{
    co_await exchange.finished().wait();
}

// Blocks until the exchange has ended.
std::optional<HttpReply> replyTo(const HttpRequest& request, const std::stop_token& stop)
{
    HttpExchange exchange(request, {}, nullptr);
    const std::stop_callback onStop(stop, [&exchange] {    // from any thread
        QMetaObject::invokeMethod(&exchange, &HttpExchange::stop, Qt::QueuedConnection);
    });
    QCoro::waitFor(ended(exchange));
    const auto* reply = std::get_if<HttpReply>(&exchange.outcome());
    return reply && !stop.stop_requested() ? std::optional(*reply) : std::nullopt;
}

HttpRequest requestTo(const CopyEndpoint& endpoint)
{
    HttpRequest request;
    request.method = "POST";
    request.url = endpoint.url;
    request.headers.emplaceBack("Content-Type", "application/json");
    if (!endpoint.key.isEmpty())
        request.headers.emplaceBack("Authorization", "Bearer " + endpoint.key.toUtf8());
    request.largestReply = largestReply;
    return request;
}

}    // namespace

std::optional<CopyEndpoint> configuredEndpoint(const QString& configurationFile)
{
    const QSettings file(configurationFile, QSettings::IniFormat);
    const auto value = [&](const QString& key) {
        return file.value(u"localCopy/"_s + key).toString().trimmed();
    };
    const QString own = qEnvironmentVariable("MOLTIVA_LOCAL_COPY_URL").trimmed();
    const QString address = own.isEmpty() ? value(u"url"_s) : own;
    if (address.isEmpty())
        return std::nullopt;
    CopyEndpoint endpoint{chatUrl(address), value(u"model"_s), value(u"key"_s), {}};
    if (!isOnThisMachine(endpoint.url)) {
        endpoint.problem =
            u"La dirección de %1 no sirve: el motor local tiene que estar en este equipo, por "
            "ejemplo en http://127.0.0.1:8080/v1."_s.arg(
                own.isEmpty() ? u"«url» en [localCopy] de %1"_s.arg(configurationFile)
                              : u"MOLTIVA_LOCAL_COPY_URL"_s);
    }
    return endpoint;
}

std::optional<QByteArray> answerOf(const CopyEndpoint& endpoint, const EndpointQuestion& question,
                                   const std::stop_token& stop)
{
    const auto deadline = std::chrono::steady_clock::now() + question.timeout;
    ChatQuestion chat;
    chat.model = endpoint.model;
    chat.prompt = question.prompt;
    chat.mimeType = u"image/jpeg"_s;
    chat.image = ImageAccess::withSecurityScope(question.photo, [&] {
        return uprightJpeg(question.photo.toLocalFile(), longestShownSide);
    });
    if (chat.image.isEmpty())
        return std::nullopt;
    chat.mostTokens = mostAnswerTokens;
    chat.temperature = question.temperature;
    if (question.temperature > 0)
        chat.seed = question.seed;

    HttpRequest request = requestTo(endpoint);
    for (const QByteArray& schema :
         {QByteArray(answerSchema), QByteArray()}) {    // not all servers know it
        chat.schema = schema;
        request.body = chatRequestBody(chat);
        request.timeout = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        const std::optional<HttpReply> reply = replyTo(request, stop);
        if (reply && reply->status == succeeded) {
            const std::optional<QString> text = chatAnswer(reply->body);
            return text ? std::optional(text->toUtf8()) : std::nullopt;
        }
        if (!reply || reply->status != refused)
            break;
    }
    return std::nullopt;
}
