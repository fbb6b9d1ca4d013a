#include "account/AccountSession.h"

#include "account/AccountAPI.h"
#include "account/AccountError.h"
#include "account/WebAuthentication.h"
#include "platform/NotificationCenter.h"

#include <QPointer>

using namespace Qt::StringLiterals;

namespace {

// Awaits `operation`. If it takes longer than `limit`, requests `stop` and throws TransportError.
template <typename Result>
QCoro::Task<Result> withTimeout(std::chrono::milliseconds limit, QCoro::Task<Result> operation,
                                std::stop_source stop)
{
    bool isOver = false;
    QTimer timer;
    timer.setSingleShot(true);
    timer.callOnTimeout([&isOver, &stop] {
        isOver = true;
        stop.request_stop();
    });
    timer.start(limit);
    try {
        co_return co_await std::move(operation);
    } catch (const TransportError&) {
        if (!isOver)
            throw;
    }
    throw TransportError::timedOut();
}

QString userOf(const AccountSummary& account)
{
    return account.profile ? account.profile->id : QString();
}

}    // namespace

AccountSession::AccountSession(AccountAPI& api, Surroundings surroundings, QObject* parent)
    : CreditAccount(parent), m_api(api), m_surroundings(std::move(surroundings))
{
    m_balanceSync.setInterval(m_surroundings.balanceSyncInterval);
    m_balanceSync.callOnTimeout(this, [this] { refreshSilently(); });
    notificationCenter().subscribe(Notification::deepLinkReceived, this,
                                   [this](const QVariant& link) { handleDeepLink(link.toUrl()); });
    notificationCenter().subscribe(
        Notification::googleAuthenticationFinished, this, [this](const QVariant& result) {
            handleGoogleAuthenticationResult(result.value<GoogleAuthenticationResult>());
        });
}

// Coroutines that await a request resume inside request_stop(), with an exception, while the
// members still exist.
AccountSession::~AccountSession()
{
    m_stop.request_stop();
}

bool AccountSession::isAdministrator() const
{
    const auto& profile = m_account.profile;
    const QString& administrator = m_api.administratorEmail();
    return profile && (profile->isAdmin.value_or(false) ||
                       (!administrator.isEmpty() && profile->email.value_or(QString()).compare(
                                                        administrator, Qt::CaseInsensitive) == 0));
}

bool AccountSession::mayBeSignedIn() const
{
    return !isAuthenticated() && m_api.holdsSession();
}

QUrl AccountSession::testMailURL() const
{
    return m_api.testMailURL();
}

QString AccountSession::displayName() const
{
    const AccountProfile profile = m_account.profile.value_or(AccountProfile());
    for (const auto& name : {profile.fullName, profile.email}) {
        if (name && !name->isEmpty())
            return *name;
    }
    return u"Usuario"_s;
}

QString AccountSession::accountKey() const
{
    if (!isAuthenticated())
        return {};
    return QString::fromUtf8(m_api.origin()) + u'/' + userOf(m_account);
}

template <typename Work>
QCoro::Task<bool> AccountSession::perform(Work work)
{
    const QPointer<AccountSession> self = this;
    const std::stop_token ended = m_stop.get_token();
    const int signIn = m_signIn;
    ++m_actions;
    Q_EMIT changed();
    std::optional<QString> failure;
    Told told = Told::info;
    try {
        co_await work();
    } catch (const std::exception& error) {
        failure = readable(error);
        told = toldOf(error);
    }
    if (self && !ended.stop_requested()) {
        --m_actions;
        if (failure && signIn == m_signIn)    // not shown if somebody signed in or out meanwhile
            tell(*failure, told);
        else
            Q_EMIT changed();
        actOnLinksLater();
    }
    co_return !failure;
}

QCoro::Task<bool> AccountSession::bootstrap()
{
    const QPointer<AccountSession> self = this;
    const std::stop_token ended = m_stop.get_token();
    const int signIn = m_signIn;
    m_isLoading = true;
    Q_EMIT changed();
    std::optional<QString> failure;
    Told told = Told::problem;
    try {
        co_await check();
    } catch (const std::exception& error) {
        failure = readable(error);
        told = toldOf(error);
    }
    if (!self || ended.stop_requested())
        co_return false;
    m_isLoading = false;
    m_isChecked = true;
    if (failure && signIn == m_signIn) {    // not if somebody signed in meanwhile
        changeUser({});
        tell(*failure, told);
    } else {
        Q_EMIT changed();
    }
    actOnLinks();
    co_return !failure;
}

QCoro::Task<> AccountSession::check()
{
    std::stop_source limited;
    const std::stop_callback along(m_stop.get_token(), [&limited] { limited.request_stop(); });
    const std::chrono::milliseconds limit = m_surroundings.startLimit;
    const int signIn = m_signIn;
    configure();
    QCoro::Task<AccountSummary> asking = m_api.me(limited.get_token());
    QCoro::Task<AccountSummary> inTime = withTimeout(limit, std::move(asking), limited);
    const AccountSummary account = co_await std::move(inTime);
    if (signIn == m_signIn)
        changeUser(account);
    syncWhileSignedIn();
}

// Requests the settings. Callers do not await it: until the reply, the program works with the
// fallback settings.
QCoro::Task<> AccountSession::configure()
{
    co_await askConfiguration(WithoutReply::useFallback);
}

QCoro::Task<QString> AccountSession::refreshConfiguration()
{
    return askConfiguration(WithoutReply::keep);
}

// Requests the settings. Returns why there is no reply; empty if there is one.
QCoro::Task<QString> AccountSession::askConfiguration(WithoutReply withoutReply)
{
    const QPointer<AccountSession> self = this;
    const std::stop_token ended = m_stop.get_token();
    const int question = ++m_configurationQuestion;
    std::optional<CloudCopyConfig> configuration;
    QString failure;
    QCoro::Task<CloudCopyConfig> asking = m_api.socialCopyConfig(ended);
    try {
        configuration = co_await std::move(asking);
    } catch (const std::exception& error) {
        failure = readable(error);
    }
    if (!self || ended.stop_requested())
        co_return failure;
    // Requests overlap. A reply counts unless that to a later request has come before it; a failure
    // counts only of the last request.
    if (configuration && question > m_configurationVersion) {
        m_configurationVersion = question;
        m_cloudCopyConfig = *configuration;
        Q_EMIT changed();
    } else if (!configuration && question == m_configurationQuestion &&
               withoutReply == WithoutReply::useFallback) {
        m_cloudCopyConfig = CloudCopyConfig::fallback();
        Q_EMIT changed();
    }
    co_return failure;
}

QCoro::Task<bool> AccountSession::refresh()
{
    return perform([this] { return reload(m_stop.get_token()); });
}

QCoro::Task<> AccountSession::reload(std::stop_token stop)
{
    const int version = m_accountVersion, signIn = m_signIn;
    configure();
    const AccountSummary account = co_await m_api.me(stop);
    const bool isSame = signIn == m_signIn;
    if (version == m_accountVersion)
        receive(account);
    syncWhileSignedIn();
    if (isSame && isAuthenticated())
        tell(u"Cuenta actualizada."_s);
}

QCoro::Task<bool> AccountSession::refreshSilently()
{
    const int version = m_accountVersion;
    const std::stop_token stop = m_stop.get_token();
    try {
        const AccountSummary account = co_await m_api.me(stop);
        if (version == m_accountVersion)
            receive(account);
        if (!m_balanceSync.isActive())
            syncWhileSignedIn();
        actOnLinksLater();
        co_return true;
    } catch (const std::exception&) {
    }
    if (!stop.stop_requested())
        actOnLinksLater();
    co_return false;
}

QCoro::Task<> AccountSession::reserveCloudCopyCredits(qint64 cost, const QString& requestId)
{
    return moveCredits(Move::reserve, cost, requestId);
}

QCoro::Task<> AccountSession::refundCloudCopyCredits(qint64 cost, const QString& requestId)
{
    return moveCredits(Move::refund, cost, requestId);
}

QCoro::Task<> AccountSession::moveCredits(Move move, qint64 cost, QString requestId)
{
    const QPointer<AccountSession> self = this;
    const std::stop_token ended = m_stop.get_token();
    const int signIn = m_signIn;
    const QString user = userOf(m_account);
    const bool isReserve = move == Move::reserve;
    ++m_creditMoves;
    Q_EMIT changed();
    QString told =
        (isReserve ? u"%1 créditos reservados."_s : u"%1 créditos devueltos."_s).arg(cost);
    std::exception_ptr failure;
    QCoro::Task<CreditOperationResponse> moving =
        isReserve ? m_api.reserveSocialCopyCredits(cost, requestId, ended)
                  : m_api.refundSocialCopyCredits(cost, requestId, ended);
    try {
        const CreditOperationResponse moved = co_await std::move(moving);
        if (user != userOf(m_account))    // the caller must not use another user's credits
            throw AccountError::unauthorized();
        setBalance(moved.balance);
    } catch (const std::exception& error) {
        failure = std::current_exception();
        told = readable(error);
    }
    if (self && !ended.stop_requested()) {
        --m_creditMoves;
        if (!failure || signIn == m_signIn)    // leaves out a failure of a user who has signed out
            m_message = told;
        Q_EMIT changed();
    }
    if (failure)
        std::rethrow_exception(failure);
}

// Takes over an account that the service sent. It may be another user's, because another process
// with the same preferences may have signed in.
void AccountSession::receive(const AccountSummary& account)
{
    const bool isSame =
        account.profile.has_value() == isAuthenticated() && userOf(account) == userOf(m_account);
    if (isSame)
        setAccount(account);
    else
        changeUser(account);
}

// Sets the account. Drops the pending checkout and the purchases unless the user is still the same.
void AccountSession::changeUser(const AccountSummary& account)
{
    if (account.profile || isAuthenticated())
        ++m_signIn;
    // An answer that still comes is no longer what the user wants.
    m_isGoogleLoginPending = false;
    if (!account.profile)
        m_askedToken.reset();
    if (!account.profile || userOf(account) != userOf(m_account)) {
        m_pendingCheckout.reset();
        m_purchaseHistory.clear();
    }
    if (!account.profile)
        stopBalanceSync();
    setAccount(account);
}

void AccountSession::syncWhileSignedIn()
{
    if (isAuthenticated())
        startBalanceSync();
}

void AccountSession::setAccount(const AccountSummary& account)
{
    ++m_accountVersion;
    m_account = account;
    Q_EMIT changed();
}

void AccountSession::setBalance(qint64 balance)
{
    AccountSummary account = m_account;
    account.balance = balance;
    setAccount(account);
}

void AccountSession::tell(const QString& message, Told told)
{
    m_message = m_outcome = message;
    ++m_outcomes;
    m_told = told;
    Q_EMIT changed();
}

AccountSession::Told AccountSession::toldOf(const std::exception& failure)
{
    const auto* refused = dynamic_cast<const AccountError*>(&failure);
    if (refused && refused->kind() == AccountError::Kind::unauthorized)
        return Told::signedOut;
    return ::isUnreachable(failure) ? Told::unreachable : Told::problem;
}

void AccountSession::startBalanceSync()
{
    m_balanceSync.start();
}

void AccountSession::stopBalanceSync()
{
    m_balanceSync.stop();
}
