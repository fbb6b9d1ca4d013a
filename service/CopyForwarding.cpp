#include "service/CopyForwarding.h"

#include "copygen/text/ChatCompletion.h"
#include "copygen/text/CopyAnswer.h"
#include "copygen/text/CopyPrompt.h"
#include "platform/Http.h"
#include "service/ConfiguredValue.h"
#include "service/Http.h"
#include "service/store/Turns.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

constexpr int longestWait = 240'000, copyLookAround = 200;    // ms
constexpr qint64 largestAnswer = 4 << 20;
constexpr qsizetype longestText = 4000;
constexpr int mostAtOnce = 8;

QByteArray answerOfProvider(const PreparedCopyOrder& order, const std::atomic_bool& isEnding)
{
    QNetworkAccessManager manager;
    manager.setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
    QNetworkRequest request(order.url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/json"_s);
    if (!order.key.isEmpty())
        request.setRawHeader("Authorization", "Bearer " + order.key.toUtf8());
    const std::unique_ptr<QNetworkReply> reply(manager.post(request, order.body));

    QEventLoop loop;
    QTimer limit, look;
    limit.setSingleShot(true);
    QObject::connect(&limit, &QTimer::timeout, reply.get(), &QNetworkReply::abort);
    QObject::connect(&look, &QTimer::timeout, reply.get(), [&] {
        if (isEnding)
            reply->abort();
    });
    QObject::connect(reply.get(), &QNetworkReply::readyRead, reply.get(), [&] {
        if (reply->bytesAvailable() > largestAnswer)
            reply->abort();
    });
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    limit.start(longestWait);
    look.start(copyLookAround);
    if (!reply->isFinished())
        loop.exec();

    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply->error() != QNetworkReply::NoError || status < 200 || status > 299)
        throw Refusal(502, "provider_request_failed", u"status %1"_s.arg(status));
    return reply->readAll();
}

class Turn {
public:
    Turn() : m_isMine(turns().tryTake()) {}
    ~Turn()
    {
        if (m_isMine)
            turns().giveBack();
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    bool isMine() const { return m_isMine; }

private:
    static Turns& turns()
    {
        static Turns turns(mostAtOnce);
        return turns;
    }
    bool m_isMine;
};

}    // namespace

CopyProvider configuredCopyProvider()
{
    return {configuredValue("MOLTIVA_COPY_URL", u"copy/url"_s),
            configuredValue("MOLTIVA_COPY_KEY", u"copy/key"_s),
            configuredValue("MOLTIVA_COPY_MODEL", u"copy/model"_s)};
}

std::optional<GeneratedCopy> copyFromAnswer(QByteArrayView answer)
{
    const std::optional<QString> text = chatAnswer(answer);
    const std::optional<CopyAnswer> given = text ? readClosedCopyAnswer(*text) : std::nullopt;
    if (!given)
        return std::nullopt;

    bool isComplete = true;
    const auto field = [&](const std::optional<QString>& value) {
        const QString cleaned = cleanText(value, QString());
        isComplete = isComplete && !cleaned.isEmpty() && cleaned.size() <= longestText;
        return cleaned;
    };
    const QString title = field(given->title), subtitle = field(given->subtitle);
    const QString tagline = field(given->tagline), action = field(given->callToAction);
    const QString caption = field(given->publicationCaption);
    if (!isComplete)
        return std::nullopt;
    return GeneratedCopy(title, subtitle, tagline, action, caption, u"Analizado en la nube."_s);
}

PreparedCopyOrder preparedCopyOrder(const CopyProvider& provider, const CopyOrder& order)
{
    if (provider.address.trimmed().isEmpty())
        throw Refusal(503, "provider_key_missing", u"no MOLTIVA_COPY_URL and no [copy] url"_s);
    if (provider.model.isEmpty())
        throw Refusal(503, "model_not_configured", u"no MOLTIVA_COPY_MODEL and no [copy] model"_s);
    const QUrl url = chatUrl(provider.address);
    if (!url.isValid() || (url.scheme() != u"http" && url.scheme() != u"https"))
        throw Refusal(503, "provider_not_supported", u"the address must be http or https"_s);
    if (!provider.key.isEmpty() && url.scheme() != u"https" && !isLoopback(url.host()))
        throw Refusal(503, "provider_not_supported", u"a key goes over https alone"_s);
    ChatQuestion question;
    question.model = provider.model;
    question.prompt = CopyPromptBuilder::marketing(order.objective, order.format);
    question.mimeType = order.mimeType;
    question.image = order.image;
    return {url, provider.key, chatRequestBody(question)};
}

GeneratedCopy forwardCopyOrder(const PreparedCopyOrder& order, const std::atomic_bool& isEnding)
{
    const Turn turn;
    if (!turn.isMine())
        throw Refusal(502, "provider_request_failed", u"too many at once"_s);
    const auto copy = copyFromAnswer(answerOfProvider(order, isEnding));
    if (!copy)
        throw Refusal(502, "provider_invalid_response");
    return *copy;
}
