#pragma once

#include "model/GeneratedCopy.h"

#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

// Requests and replies of the account service: JSON objects whose keys are the names of the fields.
// Dates are strings as the service sends them.

struct AccountProfile {
    std::optional<QString> email, fullName;
    QString id;
    std::optional<bool> isAdmin;
    std::optional<QString> locale;
    bool operator==(const AccountProfile&) const = default;
};

struct StorageSummary {
    int limitMb = 0;
    int percent = 0;
    double usedMb = 0;
    bool operator==(const StorageSummary&) const = default;
};

// Nobody is signed in when `profile` is empty.
struct AccountSummary {
    qint64 balance = 0;    // credits
    std::optional<AccountProfile> profile;
    std::optional<StorageSummary> storage;
    bool operator==(const AccountSummary&) const = default;
};

// The service's settings for writing texts in the cloud, and the newest version of the program.
struct CloudCopyConfig {
    bool enabled = true;
    std::optional<QString> modelId;
    QString providerLabel;
    std::optional<QString> endpoint;
    int costCredits = 10;    // per image
    std::optional<QString> latestMacVersion;
    std::optional<QUrl> macDownloadURL;
    std::optional<QString> latestLinuxVersion;
    std::optional<QUrl> linuxDownloadURL;
    bool operator==(const CloudCopyConfig&) const = default;

    // The settings used while the service has sent none.
    static CloudCopyConfig fallback() { return {}; }
};

struct BasicOK {
    std::optional<bool> ok;
};

struct EmptyRequest {};

struct CredentialsRequest {
    QString email, password;
};

struct ProfileRequest {
    QString fullName;
};

struct PasswordChangeRequest {
    QString currentPassword, newPassword, confirmNewPassword;
};

struct PasswordResetRequest {
    QString email;
};

struct DesktopAuthExchangeRequest {
    QString token;
};

struct CheckoutRequest {
    int credits = 0;
    QString client;
};

struct CheckoutStart {
    std::optional<QUrl> url;
    std::optional<QString> sessionId;
};

struct CheckoutConfirmRequest {
    QString sessionId;
};

struct CheckoutConfirmResponse {
    bool ok = false;
    qint64 balance = 0;
};

struct CreditOperationRequest {
    qint64 cost = 0;
    QString requestId;
};

struct CreditOperationResponse {
    qint64 balance = 0;
    qint64 cost = 0;
    bool ok = false;
};

struct SocialCopyGenerateRequest {
    QString requestId, objective;
    QString format;    // raw value of a SocialFormat
    QString mimeType;
    QByteArray imageBase64;    // raw bytes of the image, base64 only in the JSON
};

struct SocialCopyGenerateResponse {
    bool ok = false;
    GeneratedCopy copy;
};

struct SocialNetworkConnection {
    QString network, name, provider;
    std::optional<bool> providerConfigured;
    bool isConnected = false;
    std::optional<QString> displayName, connectedAt;
    QUrl connectURL;
    bool operator==(const SocialNetworkConnection&) const = default;

    bool isProviderConfigured() const { return providerConfigured.value_or(true); }
};

struct SocialStatusResponse {
    bool ok = false;
    QList<SocialNetworkConnection> networks;
};

struct SocialConnectTokenRequest {
    QString network;
};

struct SocialConnectTokenResponse {
    bool ok = false;
    QUrl url;
    int expiresInSeconds = 0;
};

struct SocialPublishImage {
    QString fileName, mimeType;
    QByteArray dataBase64;    // raw bytes of the image, base64 only in the JSON
};

struct SocialPublishRequest {
    QString network, caption;
    QList<SocialPublishImage> images;
    QString requestId;
    QString placement = QStringLiteral("feed");    // or "story"
};

struct SocialPublishResponse {
    std::optional<bool> ok;
    std::optional<QString> id, status;
    std::optional<QUrl> url;
};
// The address if a browser may open it as the page of a post.
std::optional<QUrl> pageOfPost(const std::optional<QUrl>& url);

struct TemplateUploadRequest {
    QString fileName;
    std::optional<QString> oldFileName;
    QByteArray templateJSONBase64;    // raw bytes of the file, base64 only in the JSON
};

struct TemplateDeleteRequest {
    QString fileName;
};

// A template that the team shares, as the list of them shows it.
struct SharedTemplateFile {
    QString fileName, sha256;    // hexadecimal
    qint64 bytes = 0;
    QString updatedAt;
    std::optional<int> versions;    // how many others than this one the service stores
    bool operator==(const SharedTemplateFile&) const = default;
};

// All templates that the team shares and the names of those that it has withdrawn. Both lists are
// missing if nothing is newer than the version that was asked about.
struct TemplateManifest {
    QString version;
    std::optional<QList<SharedTemplateFile>> templates;
    std::optional<QList<QString>> deleted;
};

struct TemplateFileResponse {
    QString fileName, sha256;
    QByteArray jsonBase64;    // raw bytes of the file, base64 only in the JSON
};

// `error` is a machine code, `reason` an explanation for developers.
struct APIErrorPayload {
    std::optional<QString> error, reason;
};

struct PurchaseHistoryItem {
    QString id;
    QString kind;    // "credits", or a kind of storage
    std::optional<int> orderIndex;
    std::optional<QString> orderNumber, createdAt;
    int amountCents = 0;    // euro cents
    QString detail;
    std::optional<QString> periodEndsAt;
    std::optional<QUrl> invoiceURL, receiptURL;
    bool operator==(const PurchaseHistoryItem&) const = default;

    bool hasDocument() const { return invoiceURL || receiptURL; }
};

struct PurchaseHistoryResponse {
    QList<PurchaseHistoryItem> purchases;
};

struct PurchaseDocumentLinkResponse {
    QUrl url;
};

// The JSON of a record. Instantiated for the requests and replies above, but not for records that
// only occur inside others.
template <typename Record>
QByteArray toWire(const Record& record);

// Returns nothing if the bytes are not JSON or lack a required field; never throws.
template <typename Record>
std::optional<Record> fromWire(QByteArrayView bytes);
