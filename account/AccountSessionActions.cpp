// The part of AccountSession with the user's actions: sign-in and its links, profile and password,
// purchases.
#include "account/AccountAPI.h"
#include "account/AccountError.h"
#include "account/AccountSession.h"
#include "account/WebAuthentication.h"
#include "platform/NotificationCenter.h"

#include <QScopeGuard>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {

const QString linkScheme = u"moltiva"_s;
constexpr qsizetype longestLink = 4096;    // bytes
constexpr qsizetype mostLinks = 1000;      // that wait

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

std::optional<QString> queryItem(const QUrl& url, const QString& name)
{
    const QUrlQuery query(url);
    if (!query.hasQueryItem(name))
        return std::nullopt;
    return query.queryItemValue(name, QUrl::FullyDecoded);
}

}    // namespace

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
    const std::stop_token ended = m_stop.get_token();
    ++m_signInsUnderWay;
    const auto end = qScopeGuard([this, ended] {
        --m_signInsUnderWay;
        if (!ended.stop_requested())
            actOnLinksLater();
    });
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
        co_return;    // `account` is of a user who has signed out meanwhile
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
    m_isGoogleLoginPending = true;
    tell(u"Completa el acceso con Google."_s);
    try {
        co_await m_api.locate();
    } catch (const std::exception&) {
        if (self)
            m_isGoogleLoginPending = false;
        throw;
    }
    if (!self)
        co_return;
    const QUrl url = m_api.googleOAuthURL();
    WebAuthentication* overWindow = m_surroundings.webAuthentication;
    if (overWindow && overWindow->start(url, linkScheme, &postGoogleAuthenticationResult)) {
        m_isSigningInOverWindow = true;
        co_return;
    }
    openInBrowser(url);
    tell(u"Completa el acceso con Google en el navegador."_s);
}

void AccountSession::postGoogleAuthenticationResult(const GoogleAuthenticationResult& result)
{
    notificationCenter().post(Notification::googleAuthenticationFinished,
                              QVariant::fromValue(result));
}

void AccountSession::handleGoogleAuthenticationResult(const GoogleAuthenticationResult& result)
{
    using Failure = GoogleAuthenticationResult::Failure;
    m_isSigningInOverWindow = false;
    m_isGoogleLoginPending = m_isGoogleLoginPending && !result.error;
    Q_EMIT changed();
    if (result.error == Failure::cancelled)
        tell(u"Acceso con Google cancelado."_s);
    else if (result.error)
        tell(u"No se ha podido completar el acceso con Google."_s, Told::problem);
    else if (result.callbackURL)
        handleDeepLink(*result.callbackURL);
}

bool AccountSession::isDeepLink(const QUrl& url)
{
    return url.scheme() == linkScheme &&
           (url.host() == u"auth"_s || url.host() == u"social-connected"_s) &&
           url.toEncoded().size() <= longestLink;
}

bool AccountSession::handleDeepLink(const QUrl& url)
{
    if (!isDeepLink(url))
        return false;
    if (m_links.size() < mostLinks)
        m_links.append(url);
    actOnLinks();
    return true;
}

void AccountSession::actOnLinks()
{
    while (!m_links.isEmpty() && m_isChecked && !m_isLoading && m_signInsUnderWay == 0) {
        const bool isAuth = m_links.first().host() == u"auth"_s;
        // Whether the link may replace an account is known only once the service has answered.
        if (isAuth && mayBeSignedIn() && !m_isGoogleLoginPending)
            return;
        const QUrl url = m_links.takeFirst();
        if (isAuth)
            handleAuthCallback(url);
        else
            handleSocialConnectionCallback(url);
    }
}

// Queued, so that what has just ended is told before the next link is acted on.
void AccountSession::actOnLinksLater()
{
    QMetaObject::invokeMethod(this, &AccountSession::actOnLinks, Qt::QueuedConnection);
}

void AccountSession::handleAuthCallback(const QUrl& url)
{
    const auto code = queryItem(url, u"error"_s);
    const auto token = queryItem(url, u"token"_s);
    if (code || !token) {
        m_isGoogleLoginPending = false;
        tell(oauthMessage(code.value_or(QString())), Told::problem);
    } else if (!isAuthenticated() || m_isGoogleLoginPending) {
        exchange(*token);
    } else if (!m_askedToken) {
        m_askedToken = token;
        Q_EMIT changed();
    } else if (m_askedToken != token) {
        tell(u"Otro enlace para cambiar de cuenta no se ha usado: responde antes al primero."_s,
             Told::problem);
    }
}

void AccountSession::exchange(const QString& token)
{
    perform([this, token] {
        return enter(m_api.exchangeDesktopAuthToken(token, m_stop.get_token()),
                     u"Sesión iniciada con Google."_s);
    });
}

void AccountSession::answerLink(LinkAnswer answer)
{
    const std::optional<QString> token = std::exchange(m_askedToken, {});
    if (!token)
        return;
    if (answer == LinkAnswer::changeAccount)
        exchange(*token);
    else
        tell(u"El enlace no se ha usado: sigues con tu cuenta."_s);
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
    if (m_pendingCheckout == sessionId)    // not if another checkout was opened meanwhile
        m_pendingCheckout.reset();
    tell(u"Compra confirmada."_s);
    // The purchase stays confirmed even if the list of purchases cannot be loaded.
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

// Opens web pages only, never files or programs, because the addresses come from a server.
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
