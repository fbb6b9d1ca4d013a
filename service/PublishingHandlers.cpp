#include "model/GuardedJson.h"
#include "service/Handlers.h"
#include "service/ImageCheck.h"
#include "service/Ledger.h"
#include "service/Service.h"
#include "service/Sessions.h"
#include "service/SocialPosts.h"
#include "service/TemplateFiles.h"
#include "service/Visit.h"

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 mostPixelsToDescribe = 50'000'000;
constexpr qsizetype longestObjective = 4000;
constexpr int connectSeconds = 600;

std::optional<SocialFormat> knownFormat(const QString& name)
{
    const auto byTitle = fromRawValue<SocialFormat>(name);
    return byTitle ? byTitle : fromTemplateKey(name);
}

// A record drops what does not read in a list; an image that is dropped would be missing in the
// post without a word.
class ObjectCount final : public nlohmann::json_sax<json::Value> {
public:
    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(number_integer_t) override { return true; }
    bool number_unsigned(number_unsigned_t) override { return true; }
    bool number_float(number_float_t, const string_t&) override { return true; }
    bool string(string_t&) override { return true; }
    bool binary(binary_t&) override { return true; }
    bool start_object(std::size_t) override { return ++m_count > 0; }
    bool key(string_t&) override { return true; }
    bool end_object() override { return true; }
    bool start_array(std::size_t) override { return true; }
    bool end_array() override { return true; }
    bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception&) override
    {
        return false;
    }
    int count() const { return m_count; }

private:
    int m_count = 0;
};

int objectsIn(QByteArrayView text)
{
    ObjectCount objects;
    json::Value::sax_parse(text.begin(), text.end(), &objects);
    return objects.count();
}

}    // namespace

ServiceReply showCopyConfig(Visit& visit)
{
    const QString model = visit.service.copyProvider().model;
    CloudCopyConfig config;
    config.providerLabel = u"Servicio local"_s;
    if (!model.isEmpty())
        config.modelId = model;
    return wireReply(config);
}

ServiceReply generateCopy(Visit& visit)
{
    Service& service = visit.service;
    const auto given = wireBody<SocialCopyGenerateRequest>(visit, "invalid_image");
    const auto format = knownFormat(given.format);
    if (!format || given.objective.size() > longestObjective)
        throw Refusal(400, "invalid_credit_request", u"the format or the objective"_s);
    {
        Transaction transaction(service.database());
        if (!isReserved(transaction, visit.account.id, given.requestId))
            throw Refusal(409, "credit_not_reserved");
    }
    if (!isImage(given.imageBase64, given.mimeType, mostPixelsToDescribe,
                 service.folder(u"temporal"_s)))
        throw Refusal(400, "invalid_image");
    const GeneratedCopy copy = forwardCopyOrder(
        service.copyProvider(), {given.objective, *format, given.mimeType, given.imageBase64},
        service.isEnding());
    return wireReply(SocialCopyGenerateResponse{.ok = true, .copy = copy});
}

ServiceReply uploadTemplate(Visit& visit)
{
    storeTemplate(visit.service.folder(u"plantillas"_s),
                  wireBody<TemplateUploadRequest>(visit, "invalid_template"));
    return okReply();
}

ServiceReply deleteTemplate(Visit& visit)
{
    removeTemplate(visit.service.folder(u"plantillas"_s),
                   wireBody<TemplateDeleteRequest>(visit, "invalid_template").fileName);
    return okReply();
}

ServiceReply showConnections(Visit& visit)
{
    Transaction transaction(visit.service.database());
    return wireReply(SocialStatusResponse{
        .ok = true, .networks = connections(transaction, visit.account.id, visit.request.base)});
}

ServiceReply giveConnectToken(Visit& visit)
{
    const auto given = wireBody<SocialConnectTokenRequest>(visit, "invalid_social_network");
    const QString network = rawValue(knownNetwork(given.network));
    Transaction transaction(visit.service.database());
    const QByteArray token = givePass(transaction, PassPurpose::socialConnection, visit.account.id,
                                      network, visit.service.now() + qint64(connectSeconds) * 1000);
    transaction.commit();
    return wireReply(SocialConnectTokenResponse{
        .ok = true,
        .url = QUrl(visit.request.base + u"/conectar/"_s + QString::fromLatin1(token)),
        .expiresInSeconds = connectSeconds});
}

ServiceReply publishPost(Visit& visit)
{
    const auto given = wireBody<SocialPublishRequest>(visit, "invalid_social_publish_request");
    if (objectsIn(visit.request.body) != given.images.size() + 1)
        throw Refusal(400, "invalid_social_publish_image");
    const QString id = publish(visit.service, visit.account.id, given);
    return wireReply(
        SocialPublishResponse{.ok = true,
                              .id = id,
                              .status = u"published"_s,
                              .url = QUrl(visit.request.base + u"/publicacion/"_s + id)});
}
