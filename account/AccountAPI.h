#pragma once

#include "account/AccountRecords.h"
#include "account/ServiceConfiguration.h"
#include "model/SocialFormat.h"
#include "platform/HttpClient.h"

#include <QCoroTask>
#include <QFuture>
#include <QObject>

#include <chrono>
#include <stop_token>

class LocalService;
class PreferencesStore;

// Time limits of one request, from its start to the last byte of the reply. Requests with a body
// may carry images and templates, which are slow on a poor line.
struct RequestLimits {
    std::chrono::milliseconds withoutBody = std::chrono::seconds(35);
    std::chrono::milliseconds withBody = std::chrono::seconds(260);
};

// The client of the account service and of the public web site: one function an endpoint. It keeps
// the session cookie in the preferences between runs and sends it with every request.
//
// All functions throw AccountError; without a reply, and after a stop was requested,
// TransportError. Requests may overlap. Lives on the interface thread.
class AccountAPI : public QObject {
    Q_OBJECT
public:
    // `preferences` and `local` outlive the client. `local` stands in for an address that
    // `configuration` leaves out.
    AccountAPI(const ServiceConfiguration& configuration, PreferencesStore& preferences,
               LocalService* local = nullptr, RequestLimits limits = {}, QObject* parent = nullptr);
    ~AccountAPI() override;

    QCoro::Task<AccountSummary> me(std::stop_token stop = {});
    QCoro::Task<AccountSummary> login(const QString& email, const QString& password,
                                      std::stop_token stop = {});
    QCoro::Task<AccountSummary> registerAccount(const QString& email, const QString& password,
                                                std::stop_token stop = {});
    // Forgets the cookie afterwards. Succeeds also when the service had ended the session already.
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

    QCoro::Task<SocialStatusResponse> socialStatus(std::stop_token stop = {});
    QCoro::Task<SocialConnectTokenResponse> socialConnectToken(const QString& network,
                                                               std::stop_token stop = {});
    // `placement`: "feed" or "story".
    QCoro::Task<SocialPublishResponse>
    publishSocialPost(const QString& network, const QString& caption,
                      QList<SocialPublishImage> images, const QString& requestId,
                      const QString& placement = QStringLiteral("feed"), std::stop_token stop = {});

    // Starts the local service if one is needed; its address, and so the three addresses below, is
    // known only afterwards.
    QCoro::Task<> locate(std::stop_token stop = {});
    QUrl googleOAuthURL() const;
    QUrl socialConnectionURL(const QString& network) const;
    // The page on which the local service shows the mails it does not send; empty for any other
    // service.
    QUrl testMailURL() const;

    const QString& siteName() const { return m_configuration.siteName; }
    const QString& administratorEmail() const { return m_configuration.administratorEmail; }
    // Scheme, host and port of the service, or "local" for the local one, whose port changes.
    const QByteArray& origin() const { return m_origin; }
    bool holdsSession() const { return !m_session.cookie.isEmpty(); }
    // Whether the preferences keep the session for the next run.
    bool isSessionKept() const { return m_isSessionKept; }
    // Why a session that has ended could not be removed from the preferences, where the next run
    // finds it: part of a sentence. Nothing when it was removed.
    const std::optional<QString>& whyEndedSessionIsKept() const { return m_endedSessionKept; }

private:
    enum class Base { service, site };
    struct Call;

    // The session that a request carries. Its reply may change or end the session only while
    // `generation` is still the current one: a late reply would bring back a session that has
    // ended.
    struct Session {
        QByteArray cookie;         // "tallerio_session=…", empty without a session
        quint64 generation = 0;    // rises whenever the cookie is replaced or removed
    };
    struct Answer {
        HttpReply reply;
        Session session;    // the one sent last, or the one that came with the reply
    };
    QCoro::Task<Answer> sendFollowing(Call call, std::stop_token stop);
    QCoro::Task<QByteArray> exchange(Call call, std::stop_token stop);
    template <typename Reply>
    QCoro::Task<Reply> request(Call call, std::stop_token stop);
    template <typename Reply>
    QCoro::Task<Reply> requestPrepared(Call call, QFuture<QByteArray> body, std::stop_token stop);
    QCoro::Task<> obey(Call call, std::stop_token stop);
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
    const QByteArray m_origin;    // stored beside the cookie, which is sent to no other origin
    Session m_session;
    bool m_isSessionKept = true;
    std::optional<QString> m_endedSessionKept;
    HttpClient m_http;
};
