#include "copygen/text/ChatCompletion.h"

#include "model/GuardedJson.h"

using namespace Qt::StringLiterals;

namespace {

// The member `key` of an object; a JSON null when there is none.
const json::Value& member(const json::Value& object, const char* key)
{
    static const json::Value none;
    const auto found = object.is_object() ? object.find(key) : object.end();
    return object.is_object() && found != object.end() ? *found : none;
}

}    // namespace

QByteArray chatRequestBody(const ChatQuestion& question)
{
    const QByteArray image =
        "data:" + question.mimeType.toLatin1() + ";base64," + question.image.toBase64();
    json::Value body{
        {"messages",
         {{{"role", "user"},
           {"content",
            {{{"type", "text"}, {"text", question.prompt.toStdString()}},
             {{"type", "image_url"}, {"image_url", {{"url", image.toStdString()}}}}}}}}},
    };
    if (!question.model.isEmpty())
        body["model"] = question.model.toStdString();
    if (question.mostTokens > 0)
        body["max_tokens"] = question.mostTokens;
    if (question.temperature)
        body["temperature"] = *question.temperature;
    if (question.seed)
        body["seed"] = *question.seed;
    if (!question.schema.isEmpty()) {
        body["response_format"] = {{"type", "json_schema"},
                                   {"json_schema",
                                    {{"name", "copy"},
                                     {"strict", true},
                                     {"schema", json::parsedWithCare(question.schema)}}}};
    }
    return QByteArray::fromStdString(body.dump());
}

std::optional<QString> chatAnswer(QByteArrayView reply)
{
    const json::Value whole = json::parsedWithCare(reply);
    const json::Value& choices = member(whole, "choices");
    if (!choices.is_array() || choices.empty())
        return std::nullopt;
    const json::Value& content = member(member(choices.front(), "message"), "content");
    // Some servers give the content as one string, others as a list of parts.
    QString text;
    if (json::read(content, text))
        return text;
    if (!content.is_array())
        return std::nullopt;
    for (const json::Value& part : content) {
        if (QString piece; json::read(member(part, "text"), piece))
            text += piece;
    }
    return text;
}

QUrl chatUrl(const QString& address)
{
    const QString path = u"/chat/completions"_s;
    QString whole = address.trimmed();
    while (whole.endsWith(u'/'))
        whole.chop(1);
    return QUrl(whole.endsWith(path) ? whole : whole + path, QUrl::StrictMode);
}
