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

// From start to last byte. What carries images and templates may be slow.
struct RequestLimits {
    std::chrono::milliseconds withoutBody = std::chrono::seconds(35);
    std::chrono::milliseconds withBody = std::chrono::seconds(260);
};

// The client of the account service and of the public web site: one function an endpoint. It holds
// the cookie of the session, in the preferences between runs, and sends it with every request.
//
// All functions throw AccountError, or TransportError when there was no reply; a stop asked for is
// the latter. Requests may overlap. Lives on the interface thread.
class AccountAPI : public QObject {
    Q_OBJECT
public:
    // The preferences and the local service outlive the client; the latter answers for what is not
    // configured.
    AccountAPI(const ServiceConfiguration& configuration, PreferencesStore& preferences,
               LocalService* local = nullptr, RequestLimits limits = {}, QObject* parent = nullptr);
    ~AccountAPI() override;

    QCoro::Task<AccountSummary> me(std::stop_token stop = {});
    QCoro::Task<AccountSummary> login(const QString& email, const QString& password,
                                      std::stop_token stop = {});
    QCoro::Task<AccountSummary> registerAccount(const QString& email, const QString& password,
                                                std::stop_token stop = {});
    // The cookie is forgotten afterwards. A session that has ended already counts as ended.
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

    // For the browser. The address of a local service is known once it has answered.
    QCoro::Task<> locate(std::stop_token stop = {});
    QUrl googleOAuthURL() const;
    QUrl socialConnectionURL(const QString& network) const;
    // Where the local service shows the mails that it does not send; empty for any other.
    QUrl testMailURL() const;

    const QString& siteName() const { return m_configuration.siteName; }
    const QString& administratorEmail() const { return m_configuration.administratorEmail; }
    // Of the service; the same for a local one wherever it listens.
    const QByteArray& origin() const { return m_origin; }
    bool holdsSession() const { return !m_session.cookie.isEmpty(); }
    // The session that is held outlives the program.
    bool isSessionKept() const { return m_isSessionKept; }
    // The session that ended last could not be removed, and the next program finds it; gives why,
    // as a part of a sentence.
    const std::optional<QString>& whyEndedSessionIsKept() const { return m_endedSessionKept; }

private:
    enum class Base { service, site };
    struct Call;

    // What a request carries of the session. Its reply may change or end the session only while no
    // other one was taken since: a late one would bring back what has ended.
    struct Session {
        QByteArray cookie;         // "tallerio_session=…", empty without a session
        quint64 generation = 0;    // rises with every change
    };
    struct Answer {
        HttpReply reply;
        Session session;    // that was sent last, or came with the reply
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
    const QByteArray m_origin;    // that the session is of
    Session m_session;
    bool m_isSessionKept = true;
    std::optional<QString> m_endedSessionKept;
    HttpClient m_http;
};
