#include "account/AccountRecords.h"

#include "model/GuardedJson.h"
#include "model/RecordJson.h"

namespace json {

// clang-format off
#define MOLTIVA_FIELDS(Record, ...)                                                                \
    template <>                                                                                    \
    struct JsonFields<Record> {                                                                    \
        using R = Record;                                                                          \
        static constexpr auto fields = std::tuple{__VA_ARGS__};                                    \
    };
// clang-format on

MOLTIVA_FIELDS(AccountProfile, optional("email", &R::email), optional("fullName", &R::fullName),
               required("id", &R::id), optional("isAdmin", &R::isAdmin),
               optional("locale", &R::locale))
MOLTIVA_FIELDS(StorageSummary, required("limitMb", &R::limitMb), required("percent", &R::percent),
               required("usedMb", &R::usedMb))
MOLTIVA_FIELDS(AccountSummary, required("balance", &R::balance), optional("profile", &R::profile),
               optional("storage", &R::storage))
// An unreadable address of a download counts as missing.
MOLTIVA_FIELDS(CloudCopyConfig, required("enabled", &R::enabled), optional("modelId", &R::modelId),
               required("providerLabel", &R::providerLabel), optional("endpoint", &R::endpoint),
               required("costCredits", &R::costCredits),
               optional("latestMacVersion", &R::latestMacVersion),
               lenient("macDownloadURL", &R::macDownloadURL),
               lenient("latestLinuxVersion", &R::latestLinuxVersion),
               lenient("linuxDownloadURL", &R::linuxDownloadURL))
MOLTIVA_FIELDS(BasicOK, optional("ok", &R::ok))
template <>
struct JsonFields<EmptyRequest> {
    static constexpr std::tuple<> fields{};
};
MOLTIVA_FIELDS(CredentialsRequest, required("email", &R::email), required("password", &R::password))
MOLTIVA_FIELDS(ProfileRequest, required("fullName", &R::fullName))
MOLTIVA_FIELDS(PasswordChangeRequest, required("currentPassword", &R::currentPassword),
               required("newPassword", &R::newPassword),
               required("confirmNewPassword", &R::confirmNewPassword))
MOLTIVA_FIELDS(PasswordResetRequest, required("email", &R::email))
MOLTIVA_FIELDS(DesktopAuthExchangeRequest, required("token", &R::token))
MOLTIVA_FIELDS(CheckoutRequest, required("credits", &R::credits), required("client", &R::client))
MOLTIVA_FIELDS(CheckoutStart, lenient("url", &R::url), optional("sessionId", &R::sessionId))
MOLTIVA_FIELDS(CheckoutConfirmRequest, required("sessionId", &R::sessionId))
MOLTIVA_FIELDS(CheckoutConfirmResponse, required("ok", &R::ok), required("balance", &R::balance))
MOLTIVA_FIELDS(CreditOperationRequest, required("cost", &R::cost),
               required("requestId", &R::requestId))
MOLTIVA_FIELDS(CreditOperationResponse, required("balance", &R::balance),
               required("cost", &R::cost), required("ok", &R::ok))
MOLTIVA_FIELDS(SocialCopyGenerateRequest, required("requestId", &R::requestId),
               required("objective", &R::objective), required("format", &R::format),
               required("mimeType", &R::mimeType), required("imageBase64", &R::imageBase64))
MOLTIVA_FIELDS(SocialCopyGenerateResponse, required("ok", &R::ok), required("copy", &R::copy))
MOLTIVA_FIELDS(SocialNetworkConnection, required("network", &R::network),
               required("name", &R::name), required("provider", &R::provider),
               optional("providerConfigured", &R::providerConfigured),
               required("isConnected", &R::isConnected), optional("displayName", &R::displayName),
               optional("connectedAt", &R::connectedAt), required("connectURL", &R::connectURL))
MOLTIVA_FIELDS(SocialStatusResponse, required("ok", &R::ok), required("networks", &R::networks))
MOLTIVA_FIELDS(SocialConnectTokenRequest, required("network", &R::network))
MOLTIVA_FIELDS(SocialConnectTokenResponse, required("ok", &R::ok), required("url", &R::url),
               required("expiresInSeconds", &R::expiresInSeconds))
MOLTIVA_FIELDS(SocialPublishImage, required("fileName", &R::fileName),
               required("mimeType", &R::mimeType), required("dataBase64", &R::dataBase64))
MOLTIVA_FIELDS(SocialPublishRequest, required("network", &R::network),
               required("caption", &R::caption), required("images", &R::images),
               required("requestId", &R::requestId), required("placement", &R::placement))
MOLTIVA_FIELDS(SocialPublishResponse, lenient("ok", &R::ok), lenient("id", &R::id),
               lenient("status", &R::status), lenient("url", &R::url))
MOLTIVA_FIELDS(TemplateUploadRequest, required("fileName", &R::fileName),
               optional("oldFileName", &R::oldFileName),
               required("templateJSONBase64", &R::templateJSONBase64))
MOLTIVA_FIELDS(TemplateDeleteRequest, required("fileName", &R::fileName))
MOLTIVA_FIELDS(SharedTemplateFile, required("fileName", &R::fileName),
               required("sha256", &R::sha256), required("bytes", &R::bytes),
               optional("updatedAt", &R::updatedAt), lenient("versions", &R::versions))
MOLTIVA_FIELDS(TemplateManifest, required("version", &R::version),
               optional("templates", &R::templates), optional("deleted", &R::deleted))
MOLTIVA_FIELDS(TemplateFileResponse, required("fileName", &R::fileName),
               required("sha256", &R::sha256), required("jsonBase64", &R::jsonBase64))
MOLTIVA_FIELDS(APIErrorPayload, lenient("error", &R::error), lenient("reason", &R::reason))
MOLTIVA_FIELDS(PurchaseHistoryItem, required("id", &R::id), required("kind", &R::kind),
               optional("orderIndex", &R::orderIndex), optional("orderNumber", &R::orderNumber),
               optional("createdAt", &R::createdAt), required("amountCents", &R::amountCents),
               required("detail", &R::detail), optional("periodEndsAt", &R::periodEndsAt),
               lenient("invoiceURL", &R::invoiceURL), lenient("receiptURL", &R::receiptURL))
MOLTIVA_FIELDS(PurchaseHistoryResponse, required("purchases", &R::purchases))
MOLTIVA_FIELDS(PurchaseDocumentLinkResponse, required("url", &R::url))

#undef MOLTIVA_FIELDS

}    // namespace json

template <typename Record>
QByteArray toWire(const Record& record)
{
    return json::written(record);
}

template <typename Record>
std::optional<Record> fromWire(QByteArrayView bytes)
{
    const json::Value value = json::parsedWithCare(bytes);
    Record record;
    return json::read(value, record) ? std::optional(std::move(record)) : std::nullopt;
}

#define MOLTIVA_WIRE_RECORD(Record)                                                                \
    template QByteArray toWire(const Record&);                                                     \
    template std::optional<Record> fromWire(QByteArrayView);

MOLTIVA_WIRE_RECORD(AccountSummary)
MOLTIVA_WIRE_RECORD(CloudCopyConfig)
MOLTIVA_WIRE_RECORD(BasicOK)
MOLTIVA_WIRE_RECORD(EmptyRequest)
MOLTIVA_WIRE_RECORD(CredentialsRequest)
MOLTIVA_WIRE_RECORD(ProfileRequest)
MOLTIVA_WIRE_RECORD(PasswordChangeRequest)
MOLTIVA_WIRE_RECORD(PasswordResetRequest)
MOLTIVA_WIRE_RECORD(DesktopAuthExchangeRequest)
MOLTIVA_WIRE_RECORD(CheckoutRequest)
MOLTIVA_WIRE_RECORD(CheckoutStart)
MOLTIVA_WIRE_RECORD(CheckoutConfirmRequest)
MOLTIVA_WIRE_RECORD(CheckoutConfirmResponse)
MOLTIVA_WIRE_RECORD(CreditOperationRequest)
MOLTIVA_WIRE_RECORD(CreditOperationResponse)
MOLTIVA_WIRE_RECORD(SocialCopyGenerateRequest)
MOLTIVA_WIRE_RECORD(SocialCopyGenerateResponse)
MOLTIVA_WIRE_RECORD(SocialStatusResponse)
MOLTIVA_WIRE_RECORD(SocialConnectTokenRequest)
MOLTIVA_WIRE_RECORD(SocialConnectTokenResponse)
MOLTIVA_WIRE_RECORD(SocialPublishRequest)
MOLTIVA_WIRE_RECORD(SocialPublishResponse)
MOLTIVA_WIRE_RECORD(TemplateUploadRequest)
MOLTIVA_WIRE_RECORD(TemplateDeleteRequest)
MOLTIVA_WIRE_RECORD(TemplateManifest)
MOLTIVA_WIRE_RECORD(TemplateFileResponse)
MOLTIVA_WIRE_RECORD(APIErrorPayload)
MOLTIVA_WIRE_RECORD(PurchaseHistoryResponse)
MOLTIVA_WIRE_RECORD(PurchaseDocumentLinkResponse)

#undef MOLTIVA_WIRE_RECORD

std::optional<QUrl> pageOfPost(const std::optional<QUrl>& url)
{
    constexpr qsizetype longest = 2'000;
    const bool isPage = url && url->isValid() && !url->host().isEmpty() &&
                        (url->scheme() == u"https" || url->scheme() == u"http") &&
                        url->toEncoded().size() <= longest;
    return isPage ? url : std::nullopt;
}
