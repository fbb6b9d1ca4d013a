#include "service/Handlers.h"
#include "service/Service.h"
#include "service/Visit.h"
#include "service/store/CopyResults.h"
#include "service/store/ImageCheck.h"
#include "service/store/Ledger.h"
#include "service/store/Sessions.h"
#include "service/store/SocialPosts.h"
#include "service/store/TemplateCatalogue.h"

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

// Counts the objects in valid JSON. wireBody() silently drops list entries that do not parse; the
// count shows whether it has dropped an image.
int objectsIn(QByteArrayView json)
{
    int count = 0;
    bool isInString = false;
    for (qsizetype i = 0; i < json.size(); ++i) {
        if (isInString && json[i] == '\\')
            ++i;
        else if (json[i] == '"')
            isInString = !isInString;
        else if (!isInString && json[i] == '{')
            ++count;
    }
    return count;
}

// The reply stored for this request, if it was answered before. Throws Refusal when its credits are
// not reserved.
std::optional<QByteArray> madeBefore(Visit& visit, const QString& requestId)
{
    Transaction transaction(visit.service.database());
    const auto cost = reservedCost(transaction, visit.account.id, requestId);
    if (!cost || *cost < CloudCopyConfig{}.costCredits)
        throw Refusal(409, "credit_not_reserved");
    return copyResult(transaction, visit.account.id, requestId);
}

}    // namespace

ServiceReply showCopyConfig(Visit& visit)
{
    const QString model = visit.service.copyProvider().model;
    CloudCopyConfig config;
    config.providerLabel = u"Servicio local"_s;
    if (!model.isEmpty())
        config.modelId = model;
    const OfferedProgram program = visit.service.offeredProgram();
    if (!program.version.isEmpty())
        config.latestLinuxVersion = program.version;
    if (!program.download.isEmpty())
        config.linuxDownloadURL = QUrl(program.download);
    return wireReply(config);
}

// Leaves the reserved credits refundable: a client that lost the reply on the way must not pay for
// texts that it never saw.
ServiceReply generateCopy(Visit& visit)
{
    Service& service = visit.service;
    auto given = wireBody<SocialCopyGenerateRequest>(visit, "invalid_image");
    const auto format = knownFormat(given.format);
    if (!format || given.objective.size() > longestObjective)
        throw Refusal(400, "invalid_credit_request", u"the format or the objective"_s);
    if (const auto reply = madeBefore(visit, given.requestId))
        return {.body = *reply};
    if (!isImage(given.imageBase64, given.mimeType, mostPixelsToDescribe,
                 service.folder(u"temporal"_s)))
        throw Refusal(400, "invalid_image");
    const PreparedCopyOrder order =
        preparedCopyOrder(service.copyProvider(), {given.objective, *format, given.mimeType,
                                                   std::exchange(given.imageBase64, {})});
    // Other requests may be waiting for this memory: they should not wait for the provider as well.
    visit.request.releaseBody();
    const GeneratedCopy copy = forwardCopyOrder(order, service.isEnding());
    const QByteArray reply = toWire(SocialCopyGenerateResponse{.ok = true, .copy = copy});
    Transaction transaction(service.database());
    const QByteArray kept =
        keepCopyResult(transaction, visit.account.id, given.requestId, reply, service.now());
    transaction.commit();
    return {.body = kept};
}

ServiceReply showTemplates(Visit& visit)
{
    Transaction transaction(visit.service.database());
    return wireReply(templateManifest(transaction, visit.request.query.value(u"since"_s)));
}

ServiceReply showTemplateFile(Visit& visit)
{
    const auto version = visit.request.query.value(u"version"_s) == u"previous"
                             ? TemplateVersion::previous
                             : TemplateVersion::current;
    Transaction transaction(visit.service.database());
    return wireReply(templateFile(transaction, visit.request.query.value(u"name"_s), version));
}

ServiceReply uploadTemplate(Visit& visit)
{
    storeTemplate(visit.service.database(),
                  wireBody<TemplateUploadRequest>(visit, "invalid_template"), visit.service.now());
    return okReply();
}

ServiceReply deleteTemplate(Visit& visit)
{
    withdrawTemplate(visit.service.database(),
                     wireBody<TemplateDeleteRequest>(visit, "invalid_template").fileName,
                     visit.service.now());
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
    const QByteArray token =
        givePass(transaction, PassPurpose::socialConnection, visit.account.id, network,
                 {visit.service.now(), qint64(connectSeconds) * 1000});
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
    const QString id =
        publish(visit.service.database(),
                {visit.service.folder(u"publicaciones"_s), visit.service.folder(u"temporal"_s)},
                visit.account.id, given, visit.service.now());
    return wireReply(
        SocialPublishResponse{.ok = true,
                              .id = id,
                              .status = u"published"_s,
                              .url = QUrl(visit.request.base + u"/publicacion/"_s + id)});
}
