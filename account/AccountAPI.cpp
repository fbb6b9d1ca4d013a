#include "account/AccountAPI.h"

#include "account/AccountError.h"
#include "account/AccountHttp.h"
#include "account/ImagePayload.h"
#include "account/LocalService.h"
#include "platform/PreferencesStore.h"
#include "platform/Workers.h"

#include <QCoroFuture>

#include <QElapsedTimer>
#include <QPointer>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {

const QString sessionCookieDefaultsKey = u"tallerioSessionCookieHeader"_s;
const QString sessionOriginKey = u"moltiva.sessionOrigin"_s;    // AccountAPI::m_pair of the cookie
const QString legacyTokenKey = u"tallerioSessionToken"_s;       // stored by earlier builds

const QString clientIdentifier = u"moltiva-macos"_s;
const QString checkoutClient = u"macos-native"_s;
constexpr int mostRedirections = 5;
constexpr qint64 largestPublishReply = 256 * 1024;
// A manifest of 2,000 templates has half a megabyte; a definition of 16 MB has 22 in base64.
constexpr qint64 largestManifest = 4 << 20, largestTemplateFile = 23 << 20;

// The stored session cookie if it belongs to `pair` or has no stored pair; empty if not.
QByteArray storedCookie(const PreferencesStore& preferences, const QByteArray& pair)
{
    if (preferences.value(sessionOriginKey).value_or(pair) != pair)
        return {};
    QByteArray cookie = preferences.value(sessionCookieDefaultsKey).value_or(QByteArray());
    const QByteArray token = preferences.value(legacyTokenKey).value_or(QByteArray());
    if (cookie.isEmpty() && !token.isEmpty())
        cookie = sessionCookiePrefix.toByteArray() + token;
    return isHeaderText(cookie) ? cookie : QByteArray();
}

// Scheme, host and port; "local" for the service on this machine, whose port changes with each
// start.
QByteArray originOf(const std::optional<QUrl>& address)
{
    return address ? address->adjusted(QUrl::RemovePath | QUrl::RemoveQuery)
                         .toEncoded(QUrl::RemoveUserInfo | QUrl::RemoveFragment)
                   : QByteArray("local");
}

// The origin of both if they are one place, so that a cookie of an earlier build, which stored the
// origin of the service alone, stays valid there.
QByteArray pairOf(const ServiceConfiguration& configuration)
{
    const auto& [service, site] = std::pair(configuration.service, configuration.site);
    const bool isOnePlace = service && site ? sameOrigin(*service, *site) : !service && !site;
    return isOnePlace ? originOf(service) : originOf(service) + ' ' + originOf(site);
}

QCoro::Task<AccountSummary> confirmed(QCoro::Task<CheckoutConfirmResponse> asking)
{
    const CheckoutConfirmResponse response = co_await std::move(asking);
    AccountSummary summary;
    summary.balance = response.balance;
    co_return summary;
}

// Awaits a sign-out. Throws all errors but an ended session and an unreadable reply.
QCoro::Task<> unlessRefused(QCoro::Task<> signingOut)
{
    try {
        co_await std::move(signingOut);
    } catch (const AccountError& error) {
        if (error.kind() == AccountError::Kind::message)
            throw;
    }
}

QCoro::Task<GeneratedCopy> generated(QCoro::Task<SocialCopyGenerateResponse> asking)
{
    const SocialCopyGenerateResponse response = co_await std::move(asking);
    co_return response.copy;
}

}    // namespace

// A request whose address is not resolved yet. `path` is percent-encoded and may contain a query;
// `body` is JSON. Only functions that are no coroutines initialise a Call with braces: in a
// coroutine, GCC 12 would destroy it twice.
struct AccountAPI::Call {
    QByteArray method;
    QByteArray path;
    std::optional<HttpBody> body = std::nullopt;
    Base base = Base::service;
    // `beginsSession`: a cookie in the reply becomes the session, even if that has changed since
    // the request. `endsSession`: an accepted reply ends the session that the request was sent
    // with.
    bool beginsSession = false, endsSession = false;
    std::optional<Session> session = std::nullopt;    // empty: m_session is sent
    // A request that publishes; see publishSocialPost().
    bool publishes = false;
    SentBytes sentBytes = {};
    std::optional<qint64> largestReply = std::nullopt;    // bytes
};

AccountAPI::AccountAPI(const ServiceConfiguration& configuration, PreferencesStore& preferences,
                       LocalService* local, RequestLimits limits, QObject* parent)
    : QObject(parent), m_configuration(configuration), m_preferences(preferences), m_local(local),
      m_limits(limits), m_origin(originOf(configuration.service)),
      m_pair(pairOf(configuration)), m_session{storedCookie(preferences, m_pair)}
{
}

AccountAPI::~AccountAPI() = default;

QUrl AccountAPI::address(Base base) const
{
    const auto& configured = base == Base::service ? m_configuration.service : m_configuration.site;
    if (configured)
        return *configured;
    return m_local ? m_local->knownAddress() : QUrl();
}

QCoro::Task<> AccountAPI::locate(std::stop_token stop)
{
    if (m_local && (!m_configuration.service || !m_configuration.site))
        co_await m_local->address(stop);
}

HttpRequest AccountAPI::prepared(Call call, const Session& session) const
{
    HttpRequest request;
    request.method = call.method;
    request.url = address(call.base).resolved(QUrl::fromEncoded(call.path));
    request.timeout = call.body ? m_limits.withBody : m_limits.withoutBody;
    request.headers = {{"Accept", "application/json"}, {"X-Client", "Moltiva-macOS"}};
    if (call.body)
        request.headers.emplaceBack("Content-Type", "application/json");
    setCookie(request, session.cookie);
    request.body = std::move(call.body);
    request.largestReply = call.largestReply.value_or(request.largestReply);
    if (call.publishes) {
        request.largestReply = largestPublishReply;
        request.cutsLargeReply = request.staysOnceSent = true;
        request.onSent = std::move(call.sentBytes);
    }
    return request;
}

// Follows redirections within the origin; of those after a post, only the ones that ask for the
// same request, because the page that another one leads to says nothing about the post. One to
// another origin is not followed but returned as the reply, so that the cookie is not sent there.
QCoro::Task<AccountAPI::Answer> AccountAPI::sendFollowing(Call call, std::stop_token stop)
{
    const QPointer<AccountAPI> self = this;
    const bool beginsSession = call.beginsSession, publishes = call.publishes;
    Answer answer;
    answer.session = *call.session;
    HttpRequest request = prepared(std::move(call), answer.session);
    const std::chrono::milliseconds limit = request.timeout;
    QElapsedTimer watch;
    watch.start();
    for (int redirections = 0;; ++redirections) {
        request.timeout = limit - std::chrono::milliseconds(watch.elapsed());
        QCoro::Task<HttpReply> sending = m_http.send(request, stop);
        answer.reply = co_await std::move(sending);
        if (!self)
            throw TransportError::stopped();
        const QByteArray cookie = sessionCookieIn(answer.reply.headers);
        if (!cookie.isEmpty() && (beginsSession || isStillHeld(answer.session))) {
            remember(cookie);
            answer.session = m_session;
            setCookie(request, cookie);
        }
        const std::optional<QUrl> location = locationIn(answer.reply, request.url);
        const bool isFollowed = location && sameOrigin(*location, request.url) &&
                                (!publishes || repeatsRequest(answer.reply.status));
        if (!isFollowed || redirections == mostRedirections)
            break;
        redirect(request, *location, answer.reply.status);
    }
    co_return answer;
}

QCoro::Task<QByteArray> AccountAPI::exchange(Call call, std::stop_token stop)
{
    const QPointer<AccountAPI> self = this;
    co_await locate(stop);
    if (!self)
        throw TransportError::stopped();
    const bool endsSession = call.endsSession, publishes = call.publishes;
    const Session sent = call.session.value_or(m_session);
    call.session = sent;
    QCoro::Task<Answer> sending = sendFollowing(std::move(call), stop);
    Answer answer;
    try {
        answer = co_await std::move(sending);
    } catch (const TransportError& error) {
        using Kind = TransportError::Kind;
        const bool isNoAnswer = (error.kind() == Kind::notHttp && !publishes) ||
                                (endsSession && error.kind() == Kind::brokenOff);
        if (!isNoAnswer)
            throw;
        if (self && endsSession)
            forget(sent);
        throw AccountError::invalidResponse();
    }
    if (!self)
        throw TransportError::stopped();
    const bool isRefused = answer.reply.status == 401;
    const QString siteName = m_configuration.siteName;
    if (isRefused)
        forget(answer.session);
    if (publishes && leavesOpen(answer.reply))
        throw AccountError::invalidResponse();
    const QByteArray body = acceptedBody(answer.reply, siteName);
    if (endsSession)
        forget(answer.session);
    co_return body;
}

template <typename Reply>
QCoro::Task<Reply> AccountAPI::request(Call call, std::stop_token stop)
{
    constexpr qsizetype soonRead = 256 * 1024;
    QCoro::Task<QByteArray> exchanging = exchange(std::move(call), stop);
    const QByteArray body = co_await std::move(exchanging);
    std::optional<Reply> reply;
    if (body.size() <= soonRead) {
        reply = fromWire<Reply>(body);
    } else {
        const auto read = [body] { return fromWire<Reply>(body); };
        QFuture<std::optional<Reply>> reading = runOnWorker(read);
        reply = co_await reading;
    }
    if (!reply)
        throw AccountError::invalidResponse();
    co_return std::move(*reply);
}

// Awaits `body`, which a worker thread is still writing, then sends the request.
template <typename Reply>
QCoro::Task<Reply> AccountAPI::requestPrepared(Call call, QFuture<QByteArray> body,
                                               std::stop_token stop)
{
    const QPointer<AccountAPI> self = this;
    call.body = co_await body;
    if (!self)
        throw AccountError::invalidResponse();
    QCoro::Task<Reply> asking = request<Reply>(std::move(call), stop);
    co_return co_await std::move(asking);
}

QCoro::Task<> AccountAPI::obey(Call call, std::stop_token stop)
{
    QCoro::Task<BasicOK> asking = request<BasicOK>(std::move(call), stop);
    co_await std::move(asking);
}

QCoro::Task<SocialPublishResponse> AccountAPI::published(Call call, std::stop_token stop)
{
    QCoro::Task<QByteArray> exchanging = exchange(std::move(call), stop);
    const QByteArray body = co_await std::move(exchanging);
    auto reply = fromWire<SocialPublishResponse>(body);
    if (!reply || !reply->ok.value_or(true))
        throw AccountError::invalidResponse();
    reply->url = pageOfPost(reply->url);
    co_return std::move(*reply);
}

bool AccountAPI::isStillHeld(const Session& session) const
{
    return session.generation == m_session.generation;
}

void AccountAPI::hold(const QByteArray& cookie)
{
    m_session = {cookie, m_session.generation + 1};
}

void AccountAPI::remember(const QByteArray& cookie)
{
    // A reply that sets the cookie to its current value does not begin another session.
    if (cookie == m_session.cookie && m_isSessionKept)
        return;
    hold(cookie);
    const auto store = [&] {
        return m_preferences.setValue(sessionCookieDefaultsKey, cookie) &&
               m_preferences.setValue(sessionOriginKey, m_pair) &&
               m_preferences.remove(legacyTokenKey);
    };
    using Store = PreferencesStore;
    m_isSessionKept =
        m_preferences.transaction(store, Store::Durability::usual, Store::Traces::erased);
}

// Removes the stored cookie only if it still is this session's: another process with the same
// preferences may have stored its own meanwhile.
void AccountAPI::forget(const Session& session)
{
    if (session.cookie.isEmpty() || !isStillHeld(session))
        return;
    const auto remove = [&] {
        return storedCookie(m_preferences, m_pair) == session.cookie &&
               m_preferences.remove(sessionCookieDefaultsKey) &&
               m_preferences.remove(sessionOriginKey) && m_preferences.remove(legacyTokenKey);
    };
    using Store = PreferencesStore;
    m_preferences.transaction(remove, Store::Durability::usual, Store::Traces::erased);
    const QString reason = m_preferences.reason();
    const bool isKept = storedCookie(m_preferences, m_pair) == session.cookie;
    m_endedSessionKept = isKept ? std::optional(reason) : std::nullopt;
    if (m_session.cookie == session.cookie)
        hold({});
}

QCoro::Task<AccountSummary> AccountAPI::meWith(const Session& session, std::stop_token stop)
{
    Call call{"GET", "/api/auth/me"};
    call.session = session;
    return request<AccountSummary>(std::move(call), std::move(stop));
}

// Asks with m_session. If that is empty or the service refuses it, asks with the session that
// another process may have stored in the preferences. This becomes m_session only after the reply,
// because it may be another user's.
QCoro::Task<AccountSummary> AccountAPI::me(std::stop_token stop)
{
    const QPointer<AccountAPI> self = this;
    const Session own = m_session;
    if (!own.cookie.isEmpty()) {
        QCoro::Task<AccountSummary> asking = meWith(own, stop);
        try {
            const AccountSummary summary = co_await std::move(asking);
            co_return summary;
        } catch (const AccountError& error) {
            const bool isRefused = error.kind() == AccountError::Kind::unauthorized;
            if (!self || !isRefused || holdsSession() || !holdsOtherThan(own.cookie))
                throw;
        }
    }
    const Session other{storedCookie(m_preferences, m_pair), m_session.generation};
    QCoro::Task<AccountSummary> asking = meWith(other, stop);
    const AccountSummary summary = co_await std::move(asking);
    if (self && isStillHeld(other))
        hold(other.cookie);
    co_return summary;
}

bool AccountAPI::holdsOtherThan(const QByteArray& cookie) const
{
    const QByteArray stored = storedCookie(m_preferences, m_pair);
    return !stored.isEmpty() && stored != cookie;
}

QCoro::Task<AccountSummary> AccountAPI::login(const QString& email, const QString& password,
                                              std::stop_token stop)
{
    Call call{"POST", "/api/auth/login", toWire(CredentialsRequest{email, password})};
    call.beginsSession = true;
    return request<AccountSummary>(std::move(call), std::move(stop));
}

QCoro::Task<AccountSummary>
AccountAPI::registerAccount(const QString& email, const QString& password, std::stop_token stop)
{
    Call call{"POST", "/api/auth/register", toWire(CredentialsRequest{email, password})};
    call.beginsSession = true;
    return request<AccountSummary>(std::move(call), std::move(stop));
}

QCoro::Task<> AccountAPI::logout(std::stop_token stop)
{
    Call call{"POST", "/api/auth/logout", toWire(EmptyRequest())};
    call.endsSession = true;
    return unlessRefused(obey(std::move(call), std::move(stop)));
}

QCoro::Task<AccountSummary> AccountAPI::updateProfile(const QString& fullName, std::stop_token stop)
{
    Call call{"PATCH", "/api/auth/profile", toWire(ProfileRequest{fullName})};
    return request<AccountSummary>(std::move(call), std::move(stop));
}

QCoro::Task<> AccountAPI::changePassword(const QString& currentPassword, const QString& newPassword,
                                         const QString& confirmNewPassword, std::stop_token stop)
{
    const PasswordChangeRequest change{currentPassword, newPassword, confirmNewPassword};
    Call call{"POST", "/api/auth/password", toWire(change)};
    return obey(std::move(call), std::move(stop));
}

QCoro::Task<> AccountAPI::requestPasswordReset(const QString& email, std::stop_token stop)
{
    const PasswordResetRequest reset{email};
    Call call{"POST", "/api/auth/password-reset/request", toWire(reset)};
    return obey(std::move(call), std::move(stop));
}

QCoro::Task<AccountSummary> AccountAPI::exchangeDesktopAuthToken(const QString& token,
                                                                 std::stop_token stop)
{
    Call call{"POST", "/api/auth/desktop/exchange", toWire(DesktopAuthExchangeRequest{token})};
    call.beginsSession = true;
    return request<AccountSummary>(std::move(call), std::move(stop));
}

QCoro::Task<CheckoutStart> AccountAPI::startCheckout(int credits, std::stop_token stop)
{
    Call call{"POST", "/api/stripe/checkout", toWire(CheckoutRequest{credits, checkoutClient})};
    return request<CheckoutStart>(std::move(call), std::move(stop));
}

QCoro::Task<AccountSummary> AccountAPI::confirmCheckout(const QString& sessionId,
                                                        std::stop_token stop)
{
    const CheckoutConfirmRequest confirmation{sessionId};
    Call call{"POST", "/api/stripe/confirm", toWire(confirmation)};
    return confirmed(request<CheckoutConfirmResponse>(std::move(call), std::move(stop)));
}

QCoro::Task<PurchaseHistoryResponse> AccountAPI::purchaseHistory(std::stop_token stop)
{
    Call call{"GET", "/api/account/purchases"};
    return request<PurchaseHistoryResponse>(std::move(call), std::move(stop));
}

QCoro::Task<PurchaseDocumentLinkResponse>
AccountAPI::purchaseDocumentLink(const QString& purchaseId, std::stop_token stop)
{
    Call call{"GET",
              "/api/account/purchases/link?purchaseId=" + QUrl::toPercentEncoding(purchaseId)};
    return request<PurchaseDocumentLinkResponse>(std::move(call), std::move(stop));
}

QCoro::Task<CreditOperationResponse>
AccountAPI::reserveSocialCopyCredits(qint64 cost, const QString& requestId, std::stop_token stop)
{
    Call call{"POST", "/api/credits/social-copy/reserve",
              toWire(CreditOperationRequest{cost, requestId})};
    return request<CreditOperationResponse>(std::move(call), std::move(stop));
}

QCoro::Task<CreditOperationResponse>
AccountAPI::refundSocialCopyCredits(qint64 cost, const QString& requestId, std::stop_token stop)
{
    Call call{"POST", "/api/credits/social-copy/refund",
              toWire(CreditOperationRequest{cost, requestId})};
    return request<CreditOperationResponse>(std::move(call), std::move(stop));
}

QCoro::Task<CloudCopyConfig> AccountAPI::socialCopyConfig(std::stop_token stop)
{
    Call call{"GET", "/api/publicaciones/config"};
    return request<CloudCopyConfig>(std::move(call), std::move(stop));
}

QCoro::Task<GeneratedCopy>
AccountAPI::generateSocialCopy(const QUrl& image, const QString& objective, SocialFormat format,
                               const QString& requestId, std::stop_token stop)
{
    // Runs on a worker thread, because reading and encoding the image would block the interface.
    const auto prepare = [path = image.toLocalFile(), objective, format, requestId] {
        const ImagePayload payload = preparedImagePayload(path);
        return toWire(SocialCopyGenerateRequest{requestId, objective, rawValue(format),
                                                payload.mimeType, payload.bytes});
    };
    return generated(requestPrepared<SocialCopyGenerateResponse>(
        {"POST", "/api/publicaciones/generate"}, runOnWorker(prepare), std::move(stop)));
}

QCoro::Task<> AccountAPI::uploadTemplate(const QString& fileName, const QByteArray& jsonData,
                                         const std::optional<QString>& oldFileName,
                                         std::stop_token stop)
{
    const TemplateUploadRequest upload{fileName, oldFileName, jsonData};
    Call call{"POST", "/api/publicaciones/templates/update", toWire(upload)};
    return obey(std::move(call), std::move(stop));
}

QCoro::Task<> AccountAPI::deleteTemplate(const QString& fileName, std::stop_token stop)
{
    const TemplateDeleteRequest deletion{fileName};
    Call call{"POST", "/api/publicaciones/templates/delete", toWire(deletion)};
    return obey(std::move(call), std::move(stop));
}

QCoro::Task<TemplateManifest> AccountAPI::templateManifest(const QString& since,
                                                           std::stop_token stop)
{
    Call call{"GET", "/api/publicaciones/templates"};
    if (!since.isEmpty())
        call.path += "?since=" + QUrl::toPercentEncoding(since);
    call.largestReply = largestManifest;
    return request<TemplateManifest>(std::move(call), std::move(stop));
}

QCoro::Task<TemplateFileResponse>
AccountAPI::templateFile(const QString& fileName, SharedVersion version, std::stop_token stop)
{
    Call call{"GET", "/api/publicaciones/templates/file?name=" + QUrl::toPercentEncoding(fileName)};
    if (version == SharedVersion::previous)
        call.path += "&version=previous";
    call.largestReply = largestTemplateFile;
    return request<TemplateFileResponse>(std::move(call), std::move(stop));
}

QCoro::Task<SocialStatusResponse> AccountAPI::socialStatus(std::stop_token stop)
{
    Call call{"GET", "/api/social/status", std::nullopt, Base::site};
    return request<SocialStatusResponse>(std::move(call), std::move(stop));
}

QCoro::Task<SocialConnectTokenResponse> AccountAPI::socialConnectToken(const QString& network,
                                                                       std::stop_token stop)
{
    Call call{"POST", "/api/social/connect-token", toWire(SocialConnectTokenRequest{network}),
              Base::site};
    return request<SocialConnectTokenResponse>(std::move(call), std::move(stop));
}

QCoro::Task<SocialPublishResponse>
AccountAPI::publishSocialPost(const QString& request, SentBytes sentBytes, std::stop_token stop)
{
    Call call{"POST", "/api/social/publish", BodyFile{request}, Base::site};
    call.publishes = true;
    call.sentBytes = std::move(sentBytes);
    return published(std::move(call), std::move(stop));
}

QUrl AccountAPI::testMailURL() const
{
    const QUrl local = m_local && !m_configuration.service ? m_local->knownAddress() : QUrl();
    return local.isEmpty() ? QUrl() : local.resolved(QUrl(u"/correo"_s));
}

QUrl AccountAPI::googleOAuthURL() const
{
    QUrl url = address(Base::service).resolved(QUrl(u"/api/auth/oauth/google"_s));
    url.setQuery(u"client="_s + clientIdentifier);
    return url;
}

QUrl AccountAPI::socialConnectionURL(const QString& network) const
{
    QUrlQuery query;
    query.addQueryItem(u"network"_s,
                       QString::fromLatin1(QUrl::toPercentEncoding(network.toLower())));
    query.addQueryItem(u"client"_s, clientIdentifier);
    QUrl url = address(Base::site).resolved(QUrl(u"/api/social/connect"_s));
    url.setQuery(query);
    return url;
}
