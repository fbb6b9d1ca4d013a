#include "account/AccountSession.h"

#include "account/AccountAPI.h"
#include "account/AccountError.h"
#include "account/WebAuthentication.h"

#include <QPointer>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {

const QString linkScheme = u"moltiva"_s;

// Throws a TransportError when the operation takes longer; it is stopped then.
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

QString oauthMessage(const QString& code)
{
    if (code == u"oauth_not_configured"_s)
        return u"El acceso con Google todavía no está configurado en Tallerio."_s;
    if (code == u"oauth_invalid_state"_s)
        return u"La sesión de Google ha caducado. Inténtalo otra vez."_s;
    if (code == u"invalid_credentials"_s)
        return u"Esta cuenta no puede acceder."_s;
    return u"No se ha podido completar el acceso con Google."_s;
}

bool isPage(const QUrl& url)
{
    return url.scheme() == u"https"_s || url.scheme() == u"http"_s;
}

QString userOf(const AccountSummary& account)
{
    return account.profile ? account.profile->id : QString();
}

std::optional<QString> queryItem(const QUrl& url, const QString& name)
{
    const QUrlQuery query(url);
    if (!query.hasQueryItem(name))
        return std::nullopt;
    return query.queryItemValue(name, QUrl::FullyDecoded);
}

}    // namespace

AccountSession::AccountSession(AccountAPI& api, Surroundings surroundings, QObject* parent)
    : CreditAccount(parent), m_api(api), m_surroundings(std::move(surroundings))
{
    m_balanceSync.setInterval(m_surroundings.balanceSyncInterval);
    m_balanceSync.callOnTimeout(this, [this] { refreshSilently(); });
}

// Whatever is under way goes on here with an exception, while the session is still there.
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
        if (failure && signIn == m_signIn)    // else somebody else signed in meanwhile
            tell(*failure, told);
        else
            Q_EMIT changed();
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
    if (failure && signIn == m_signIn) {    // else somebody signed in meanwhile, by a link
        changeUser({});
        tell(*failure, told);
    } else {
        Q_EMIT changed();
    }
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

// By itself: nobody waits for what the program can do without.
QCoro::Task<> AccountSession::configure()
{
    const QPointer<AccountSession> self = this;
    const std::stop_token ended = m_stop.get_token();
    const int question = ++m_configurationQuestion;
    CloudCopyConfig configuration = CloudCopyConfig::fallback();
    QCoro::Task<CloudCopyConfig> asking = m_api.socialCopyConfig(ended);
    try {
        configuration = co_await std::move(asking);
    } catch (const std::exception&) {
    }
    // An earlier question that is answered late says nothing new.
    if (!self || ended.stop_requested() || question != m_configurationQuestion ||
        m_cloudCopyConfig == configuration)
        co_return;
    m_cloudCopyConfig = configuration;
    Q_EMIT changed();
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
        co_return true;
    } catch (const std::exception&) {
    }
    co_return false;
}

QCoro::Task<bool> AccountSession::login(const QString& email, const QString& password)
{
    return perform([this, email, password] {
        return enter(m_api.login(email, password, m_stop.get_token()), u"Sesión iniciada."_s);
    });
}

QCoro::Task<bool> AccountSession::registerAccount(const QString& email, const QString& password)
{
    return perform([this, email, password] {
        return enter(m_api.registerAccount(email, password, m_stop.get_token()),
                     u"Cuenta creada."_s);
    });
}

QCoro::Task<> AccountSession::enter(QCoro::Task<AccountSummary> signingIn, QString told)
{
    const AccountSummary account = co_await std::move(signingIn);
    changeUser(account);
    tell(told);
    configure();
    syncWhileSignedIn();
}

QCoro::Task<bool> AccountSession::requestPasswordReset(const QString& email)
{
    return perform([this, email] { return requestReset(email); });
}

QCoro::Task<> AccountSession::requestReset(QString email)
{
    co_await m_api.requestPasswordReset(email, m_stop.get_token());
    tell(u"Si existe una cuenta con ese email, recibirás un enlace para crear una nueva "
         "contraseña."_s);
}

QCoro::Task<bool> AccountSession::logout()
{
    return perform([this] { return leave(); });
}

QCoro::Task<> AccountSession::leave()
{
    co_await m_api.logout(m_stop.get_token());
    changeUser({});
    if (const auto reason = m_api.whyEndedSessionIsKept()) {
        tell(u"Sesión cerrada, pero no se ha podido borrar de este equipo: %1."_s.arg(*reason),
             Told::problem);
    } else {
        tell(u"Sesión cerrada."_s);
    }
}

QCoro::Task<bool> AccountSession::updateProfile(const QString& fullName)
{
    return perform([this, fullName] { return saveProfile(fullName); });
}

QCoro::Task<> AccountSession::saveProfile(QString fullName)
{
    const int signIn = m_signIn;
    const AccountSummary account = co_await m_api.updateProfile(fullName, m_stop.get_token());
    if (signIn != m_signIn)
        co_return;    // another user's by now
    setAccount(account);
    tell(u"Perfil guardado."_s);
}

QCoro::Task<bool> AccountSession::changePassword(const QString& currentPassword,
                                                 const QString& newPassword,
                                                 const QString& confirmNewPassword)
{
    return perform([this, currentPassword, newPassword, confirmNewPassword] {
        return savePassword(currentPassword, newPassword, confirmNewPassword);
    });
}

QCoro::Task<> AccountSession::savePassword(QString current, QString changed, QString confirmed)
{
    co_await m_api.changePassword(current, changed, confirmed, m_stop.get_token());
    tell(u"Contraseña actualizada."_s);
}

QCoro::Task<bool> AccountSession::openGoogleLogin()
{
    return perform([this] { return startGoogleLogin(); });
}

QCoro::Task<> AccountSession::startGoogleLogin()
{
    const QPointer<AccountSession> self = this;
    m_isSigningInOverWindow = false;
    tell(u"Completa el acceso con Google."_s);
    co_await m_api.locate();
    if (!self)
        co_return;
    const QUrl url = m_api.googleOAuthURL();
    WebAuthentication* overWindow = m_surroundings.webAuthentication;
    const auto completed = [self](const GoogleAuthenticationResult& result) {
        if (self)
            self->handleGoogleAuthenticationResult(result);
    };
    if (overWindow && overWindow->start(url, linkScheme, completed)) {
        m_isSigningInOverWindow = true;
        co_return;
    }
    openInBrowser(url);
    tell(u"Completa el acceso con Google en el navegador."_s);
}

void AccountSession::handleGoogleAuthenticationResult(const GoogleAuthenticationResult& result)
{
    using Failure = GoogleAuthenticationResult::Failure;
    m_isSigningInOverWindow = false;
    Q_EMIT changed();
    if (result.error == Failure::cancelled)
        tell(u"Acceso con Google cancelado."_s);
    else if (result.error)
        tell(u"No se ha podido completar el acceso con Google."_s, Told::problem);
    else if (result.callbackURL)
        handleDeepLink(*result.callbackURL);
}

bool AccountSession::handleDeepLink(const QUrl& url)
{
    if (url.scheme() != linkScheme)
        return false;
    if (url.host() == u"auth"_s)
        handleAuthCallback(url);
    else if (url.host() == u"social-connected"_s)
        handleSocialConnectionCallback(url);
    else
        return false;
    return true;
}

void AccountSession::handleAuthCallback(const QUrl& url)
{
    if (const auto code = queryItem(url, u"error"_s)) {
        tell(oauthMessage(*code), Told::problem);
        return;
    }
    const auto token = queryItem(url, u"token"_s);
    if (!token) {
        tell(oauthMessage({}), Told::problem);
        return;
    }
    perform([this, token] {
        return enter(m_api.exchangeDesktopAuthToken(*token, m_stop.get_token()),
                     u"Sesión iniciada con Google."_s);
    });
}

void AccountSession::handleSocialConnectionCallback(const QUrl& url)
{
    if (queryItem(url, u"status"_s) != u"ok"_s) {
        tell(u"No se ha completado la conexión de la red social."_s, Told::problem);
        return;
    }
    ++m_socialConnectionRefreshToken;
    tell(u"Red social conectada. Ya puedes volver a la ventana de publicar."_s);
    refreshSilently();
}

QCoro::Task<bool> AccountSession::buyCredits(int credits)
{
    return perform([this, credits] { return startCheckout(credits); });
}

QCoro::Task<> AccountSession::startCheckout(int credits)
{
    const int signIn = m_signIn;
    const CheckoutStart start = co_await m_api.startCheckout(credits, m_stop.get_token());
    if (signIn != m_signIn)
        co_return;
    if (!start.url)
        throw AccountError::message(u"Stripe no ha devuelto URL de pago."_s);
    if (start.sessionId) {
        m_pendingCheckout = start.sessionId;
        m_checkoutPage = isPage(*start.url) ? *start.url : QUrl();
    }
    openInBrowser(*start.url);
    tell(start.sessionId ? u"Checkout abierto. Cuando pagues, pulsa Confirmar compra."_s
                         : u"Checkout abierto. Después refresca créditos."_s);
}

QCoro::Task<bool> AccountSession::confirmPendingCheckout()
{
    return perform([this] { return confirmCheckout(m_pendingCheckout); });
}

QCoro::Task<> AccountSession::confirmCheckout(std::optional<QString> sessionId)
{
    if (!sessionId)
        throw AccountError::message(u"No hay una compra pendiente."_s);
    const int signIn = m_signIn;
    const AccountSummary confirmed = co_await m_api.confirmCheckout(*sessionId, m_stop.get_token());
    if (signIn != m_signIn)
        co_return;
    setBalance(confirmed.balance);
    if (m_pendingCheckout == sessionId)    // not another one opened meanwhile
        m_pendingCheckout.reset();
    tell(u"Compra confirmada."_s);
    // The purchase is confirmed whether or not the list of them comes.
    try {
        co_await loadPurchases();
    } catch (const std::exception&) {
    }
}

QCoro::Task<bool> AccountSession::refreshPurchaseHistory()
{
    return perform([this] { return loadPurchases(); });
}

QCoro::Task<> AccountSession::loadPurchases()
{
    const int signIn = m_signIn;
    const PurchaseHistoryResponse response = co_await m_api.purchaseHistory(m_stop.get_token());
    if (signIn != m_signIn)
        co_return;
    m_purchaseHistory = response.purchases;
}

bool AccountSession::openPage(const QUrl& url)
{
    try {
        openInBrowser(url);
    } catch (const AccountError& error) {
        tell(error.text(), Told::problem);
        return false;
    }
    return true;
}

QCoro::Task<bool> AccountSession::openPurchaseDocument(const QString& purchaseId)
{
    return perform([this, purchaseId] { return openDocument(purchaseId); });
}

QCoro::Task<> AccountSession::openDocument(QString purchaseId)
{
    const auto link = co_await m_api.purchaseDocumentLink(purchaseId, m_stop.get_token());
    openInBrowser(link.url);
    tell(u"Factura abierta."_s);
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
    m_reservations += int(isReserve);
    Q_EMIT changed();
    QString told =
        (isReserve ? u"%1 créditos reservados."_s : u"%1 créditos devueltos."_s).arg(cost);
    std::exception_ptr failure;
    QCoro::Task<CreditOperationResponse> moving =
        isReserve ? m_api.reserveSocialCopyCredits(cost, requestId, ended)
                  : m_api.refundSocialCopyCredits(cost, requestId, ended);
    try {
        const CreditOperationResponse moved = co_await std::move(moving);
        if (user != userOf(m_account))    // who goes on would work on another's credits
            throw AccountError::unauthorized();
        setBalance(moved.balance);
    } catch (const std::exception& error) {
        failure = std::current_exception();
        told = readable(error);
    }
    if (self && !ended.stop_requested()) {
        m_reservations -= int(isReserve);
        if (!failure || signIn == m_signIn)    // else somebody else signed in meanwhile
            m_message = told;
        Q_EMIT changed();
    }
    if (failure)
        std::rethrow_exception(failure);
}

// Another program that keeps its session in the same place may have signed in somebody else.
void AccountSession::receive(const AccountSummary& account)
{
    const bool isSame =
        account.profile.has_value() == isAuthenticated() && userOf(account) == userOf(m_account);
    if (isSame)
        setAccount(account);
    else
        changeUser(account);
}

// Nothing of the one before stays.
void AccountSession::changeUser(const AccountSummary& account)
{
    if (account.profile || isAuthenticated())
        ++m_signIn;
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

// Addresses come from a server: only pages are opened, never files or programs.
void AccountSession::openInBrowser(const QUrl& url)
{
    if (!isPage(url))
        throw AccountError::message(u"El servidor ha dado una dirección que no se puede abrir."_s);
    if (!m_surroundings.openInBrowser(url)) {
        throw AccountError::message(
            u"No se ha podido abrir el navegador. Abre tú esta dirección: %1"_s.arg(
                url.toString(QUrl::FullyEncoded)));
    }
}

void AccountSession::startBalanceSync()
{
    m_balanceSync.start();
}

void AccountSession::stopBalanceSync()
{
    m_balanceSync.stop();
}
