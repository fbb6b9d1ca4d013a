#include "service/CopyForwarding.h"

#include "model/GuardedJson.h"
#include "model/PlainText.h"
#include "platform/Http.h"
#include "service/Http.h"
#include "service/store/Turns.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSettings>
#include <QStandardPaths>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

constexpr int longestWait = 240'000, copyLookAround = 200;    // ms
constexpr qint64 largestAnswer = 4 << 20;
constexpr qsizetype longestText = 4000;
constexpr int mostAtOnce = 8;

QString prompt(const CopyOrder& order)
{
    return u"Escribe los textos de una publicación para redes sociales a partir de la imagen.\n"
           "Objetivo de la campaña: %1\nFormato: %2\n"
           "Devuelve solo JSON válido, sin Markdown y sin explicación, con las claves exactas "
           "title, subtitle, tagline, callToAction y publicationCaption.\n"
           "Escribe en español natural, comercial y elegante. title: menos de 42 caracteres. "
           "subtitle: menos de 90. tagline: un párrafo de 120 a 220. callToAction: de 2 a 4 "
           "palabras, menos de 24 caracteres, imperativo y sin punto. publicationCaption: de 450 a "
           "900 caracteres, con 3 a 8 hashtags al final."_s.arg(
               order.objective.trimmed().isEmpty() ? u"(sin objetivo)"_s : order.objective,
               rawValue(order.format));
}

QByteArray requestBody(const CopyProvider& provider, const CopyOrder& order)
{
    const auto text = [](const QString& value) { return value.toStdString(); };
    const QByteArray image =
        "data:" + order.mimeType.toLatin1() + ";base64," + order.image.toBase64();
    const json::Value body{
        {"model", text(provider.model)},
        {"messages",
         {{{"role", "user"},
           {"content",
            {{{"type", "text"}, {"text", text(prompt(order))}},
             {{"type", "image_url"}, {"image_url", {{"url", image.toStdString()}}}}}}}}},
    };
    return QByteArray::fromStdString(body.dump());
}

QUrl endpoint(const QString& address)
{
    const QString path = u"/chat/completions"_s;
    QString whole = address.trimmed();
    while (whole.endsWith(u'/'))
        whole.chop(1);
    return QUrl(whole.endsWith(path) ? whole : whole + path, QUrl::StrictMode);
}

// The member `key` of an object; a JSON null when there is none.
const json::Value& member(const json::Value& object, const char* key)
{
    static const json::Value none;
    const auto found = object.is_object() ? object.find(key) : object.end();
    return object.is_object() && found != object.end() ? *found : none;
}

// Reads the content of a message, which some providers give as one string, others as a list of
// parts.
QString contentText(const json::Value& content)
{
    QString text;
    if (json::read(content, text) || !content.is_array())
        return text;
    for (const json::Value& part : content) {
        if (QString piece; json::read(member(part, "text"), piece))
            text += piece;
    }
    return text;
}

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
    const QSettings file(QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) +
                             u"/moltiva.conf"_s,
                         QSettings::IniFormat);
    const auto value = [&](const char* variable, const QString& key) {
        const QString own = qEnvironmentVariable(variable);
        return own.isEmpty() ? file.value(u"copy/"_s + key).toString() : own;
    };
    return {value("MOLTIVA_COPY_URL", u"url"_s), value("MOLTIVA_COPY_KEY", u"key"_s),
            value("MOLTIVA_COPY_MODEL", u"model"_s)};
}

std::optional<GeneratedCopy> copyFromAnswer(QByteArrayView answer)
{
    const json::Value whole = json::parsedWithCare(answer);
    const json::Value& choices = member(whole, "choices");
    if (!choices.is_array() || choices.empty())
        return std::nullopt;
    const QString text = contentText(member(member(choices.front(), "message"), "content"));
    // Finds the JSON object in the text: models often put it in a code fence or put words before
    // it.
    const qsizetype begin = text.indexOf(u'{'), end = text.lastIndexOf(u'}');
    if (begin < 0 || end < begin)
        return std::nullopt;
    const json::Value object = json::parsedWithCare(text.mid(begin, end - begin + 1).toUtf8());

    bool isComplete = true;
    const auto field = [&](const char* key) {
        QString value;
        json::read(member(object, key), value);
        value = plainText(value).trimmed();
        isComplete = isComplete && !value.isEmpty() && value.size() <= longestText;
        return value;
    };
    const QString title = field("title"), subtitle = field("subtitle"), tagline = field("tagline");
    const QString action = field("callToAction"), caption = field("publicationCaption");
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
    const QUrl url = endpoint(provider.address);
    if (!url.isValid() || (url.scheme() != u"http" && url.scheme() != u"https"))
        throw Refusal(503, "provider_not_supported", u"the address must be http or https"_s);
    if (!provider.key.isEmpty() && url.scheme() != u"https" && !isLoopback(url.host()))
        throw Refusal(503, "provider_not_supported", u"a key goes over https alone"_s);
    return {url, provider.key, requestBody(provider, order)};
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
