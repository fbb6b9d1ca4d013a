#pragma once

#include "account/AccountRecords.h"
#include "account/ServiceConfiguration.h"
#include "model/SocialFormat.h"
#include "platform/HttpClient.h"

#include <QCoroTask>
#include <QFuture>
#include <QObject>

#include <chrono>
#include <functional>
#include <stop_token>

class LocalService;
class PreferencesStore;

// Time limits of one request, from its start to the last byte of the reply. A request with a body
// may carry images or a template, which take long over a slow connection.
struct RequestLimits {
    std::chrono::milliseconds withoutBody = std::chrono::seconds(35);
    std::chrono::milliseconds withBody = std::chrono::seconds(260);
};

// Told how many bytes of a request were sent so far.
using SentBytes = std::function<void(qint64 bytes)>;

// The client of the account service and of the public web site, with one function per endpoint. It
// sends the session cookie with every request and stores it in the preferences for the next run of
// the program.
//
// Failed requests throw AccountError, or TransportError if no reply came or `stop` was requested.
// Several requests may run at the same time. Lives on the interface thread.
class AccountAPI : public QObject {
    Q_OBJECT
public:
    // `preferences` and `local` must outlive the client. An address that is missing in
    // `configuration` is that of `local`.
    AccountAPI(const ServiceConfiguration& configuration, PreferencesStore& preferences,
               LocalService* local = nullptr, RequestLimits limits = {}, QObject* parent = nullptr);
    ~AccountAPI() override;

    QCoro::Task<AccountSummary> me(std::stop_token stop = {});
    QCoro::Task<AccountSummary> login(const QString& email, const QString& password,
                                      std::stop_token stop = {});
    QCoro::Task<AccountSummary> registerAccount(const QString& email, const QString& password,
                                                std::stop_token stop = {});
    // Removes the session cookie afterwards. Succeeds even if the service has already ended the
    // session.
    QCoro::Task<> logout(std::stop_token stop = {});
    QCoro::Task<AccountSummary> updateProfile(const QString& fullName, std::stop_token stop = {});
    QCoro::Task<> changePassword(const QString& currentPassword, const QString& newPassword,
                                 const QString& confirmNewPassword, std::stop_token stop = {});
    QCoro::Task<> requestPasswordReset(const QString& email, std::stop_token stop = {});
    QCoro::Task<AccountSummary> exchangeDesktopAuthToken(const QString& token,
                                                         std::stop_token stop = {});

    QCoro::Task<CheckoutStart> startCheckout(int credits, std::stop_token stop = {});
    QCoro::Task<AccountSummary> confirmCheckout(const QString& sessionId,
                                                std::stop_token stop = {});
    QCoro::Task<PurchaseHistoryResponse> purchaseHistory(std::stop_token stop = {});
    QCoro::Task<PurchaseDocumentLinkResponse> purchaseDocumentLink(const QString& purchaseId,
                                                                   std::stop_token stop = {});

    QCoro::Task<CreditOperationResponse>
    reserveSocialCopyCredits(qint64 cost, const QString& requestId, std::stop_token stop = {});
    QCoro::Task<CreditOperationResponse>
    refundSocialCopyCredits(qint64 cost, const QString& requestId, std::stop_token stop = {});

    QCoro::Task<CloudCopyConfig> socialCopyConfig(std::stop_token stop = {});
    QCoro::Task<GeneratedCopy> generateSocialCopy(const QUrl& image, const QString& objective,
                                                  SocialFormat format, const QString& requestId,
                                                  std::stop_token stop = {});

    QCoro::Task<> uploadTemplate(const QString& fileName, const QByteArray& jsonData,
                                 const std::optional<QString>& oldFileName,
                                 std::stop_token stop = {});
    QCoro::Task<> deleteTemplate(const QString& fileName, std::stop_token stop = {});

    // The templates that the team shares. `since`: version of the manifest that is known already;
    // may be empty.
    QCoro::Task<TemplateManifest> templateManifest(const QString& since, std::stop_token stop = {});
    // `previous`: the version before the current one, which for a withdrawn template is the one
    // that was current last. The digest in the reply is not checked.
    enum class SharedVersion { current, previous };
    QCoro::Task<TemplateFileResponse> templateFile(const QString& fileName,
                                                   SharedVersion version = SharedVersion::current,
                                                   std::stop_token stop = {});

    QCoro::Task<SocialStatusResponse> socialStatus(std::stop_token stop = {});
    QCoro::Task<SocialConnectTokenResponse> socialConnectToken(const QString& network,
                                                               std::stop_token stop = {});
    // Sends the request that writePublishRequest() has written to the file `request`. A post that
    // was accepted is a success even without an address; its url is http or https. The request
    // stops only until it was wholly sent. If it was, the post may have been published in spite of
    // a TransportError or an unreadable reply.
    QCoro::Task<SocialPublishResponse>
    publishSocialPost(const QString& request, SentBytes sentBytes = {}, std::stop_token stop = {});

    // Starts the local service if an address is not configured. Await it before calling the three
    // functions below, which may need the address of that service.
    QCoro::Task<> locate(std::stop_token stop = {});
    QUrl googleOAuthURL() const;
    QUrl socialConnectionURL(const QString& network) const;
    // The page on which the local service shows its mails, because it sends none; empty for any
    // other service.
    QUrl testMailURL() const;

    const RequestLimits& limits() const { return m_limits; }
    // Bytes of a request that the web site takes, as far as is known.
    qint64 largestPost() const { return m_configuration.largestPost; }
    const QString& siteName() const { return m_configuration.siteName; }
    const QString& administratorEmail() const { return m_configuration.administratorEmail; }
    // Scheme, host and port of the service; "local" for the local service, whose port changes with
    // each start.
    const QByteArray& origin() const { return m_origin; }
    bool holdsSession() const { return !m_session.cookie.isEmpty(); }
    // False if the session cookie could not be stored in the preferences: the next run of the
    // program will not be signed in.
    bool isSessionKept() const { return m_isSessionKept; }
    // Why the cookie of an ended session could not be removed from the preferences, as part of a
    // Spanish sentence. Empty if it was removed.
    const std::optional<QString>& whyEndedSessionIsKept() const { return m_endedSessionKept; }

private:
    enum class Base { service, site };
    struct Call;

    // A session cookie as a request sends it. The reply may replace or remove m_session only while
    // that still has the same `generation`: otherwise a late reply could bring back a session that
    // has ended.
    struct Session {
        QByteArray cookie;         // "tallerio_session=…", empty without a session
        quint64 generation = 0;    // rises by 1 whenever m_session's cookie is replaced or removed
    };
    struct Answer {
        HttpReply reply;
        Session session;    // the session sent, or the newer one that a reply set
    };
    QCoro::Task<Answer> sendFollowing(Call call, std::stop_token stop);
    QCoro::Task<QByteArray> exchange(Call call, std::stop_token stop);
    template <typename Reply>
    QCoro::Task<Reply> request(Call call, std::stop_token stop);
    template <typename Reply>
    QCoro::Task<Reply> requestPrepared(Call call, QFuture<QByteArray> body, std::stop_token stop);
    QCoro::Task<> obey(Call call, std::stop_token stop);
    QCoro::Task<SocialPublishResponse> published(Call call, std::stop_token stop);
    HttpRequest prepared(Call call, const Session& session) const;

    QCoro::Task<AccountSummary> meWith(const Session& session, std::stop_token stop);
    bool isStillHeld(const Session& session) const;
    bool holdsOtherThan(const QByteArray& cookie) const;
    QUrl address(Base base) const;
    void hold(const QByteArray& cookie);
    void remember(const QByteArray& cookie);
    void forget(const Session& session);

    const ServiceConfiguration m_configuration;
    PreferencesStore& m_preferences;
    LocalService* m_local;
    const RequestLimits m_limits;
    const QByteArray m_origin;
    // The origins of service and web site, which share the session. Stored with the cookie, which
    // must not be sent to another pair.
    const QByteArray m_pair;
    Session m_session;
    bool m_isSessionKept = true;
    std::optional<QString> m_endedSessionKept;
    HttpClient m_http;
};
