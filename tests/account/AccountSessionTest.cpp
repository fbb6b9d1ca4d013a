#include "account/AccountSession.h"
#include "account/AccountAPI.h"
#include "account/AccountError.h"
#include "account/WebAuthentication.h"
#include "platform/NotificationCenter.h"
#include "platform/PreferencesStore.h"
#include "tests/FullDisk.h"
#include "tests/account/Awaited.h"
#include "tests/account/ScriptedServer.h"

#include <QCoroTimer>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// Completes the sign-in in the browser window only when a test calls complete().
class FakeWebAuthentication : public WebAuthentication {
public:
    bool start(const QUrl&, const QString& callbackScheme, Completion completion) override
    {
        EXPECT_EQ(callbackScheme, u"moltiva"_s);
        m_completion = std::move(completion);
        return starts;
    }
    void complete(const GoogleAuthenticationResult& result) { m_completion(result); }
    bool starts = true;

private:
    Completion m_completion;
};

class AccountSessionTest : public testing::Test {
protected:
    AccountSessionTest()
    {
        // Answers of a service with one account; a test may replace them.
        answers["/api/auth/me"] = R"({"balance":100,"profile":{"id":"1","email":"a@b.es"}})";
        answers["/api/auth/login"] = answers["/api/auth/desktop/exchange"] =
            answers["/api/auth/me"];
        answers["/api/publicaciones/config"] =
            R"({"enabled":true,"providerLabel":"Nube","costCredits":12})";
        answers["/api/auth/logout"] = "{}";
        answers["/api/stripe/checkout"] = R"({"url":"https://pago.es/1","sessionId":"s1"})";
        answers["/api/stripe/confirm"] = R"({"ok":true,"balance":1100})";
        answers["/api/account/purchases"] =
            R"({"purchases":[{"id":"p","kind":"credits","amountCents":1000,"detail":"d"}]})";
        answers["/api/account/purchases/link?purchaseId=p"] = R"({"url":"file:///etc/passwd"})";
        server.setAnswer([this](const ScriptedServer::Request& request) {
            const QByteArray answer = answers.value(request.target);
            return answer.startsWith('{') ? ScriptedServer::reply(200, answer)
                                          : ScriptedServer::reply(answer.toInt(), errorBody);
        });
    }

    AccountSession::Surroundings surroundings()
    {
        return {.openInBrowser =
                    [this](const QUrl& url) {
                        opened.append(url.toString());
                        return browserOpens;
                    },
                .webAuthentication = &web,
                .startLimit = startLimit,
                .balanceSyncInterval = syncInterval};
    }
    AccountSession& started()
    {
        session.emplace(api, surroundings());
        EXPECT_TRUE(awaited(session->bootstrap()));
        return *session;
    }
    qsizetype asked(const QByteArray& target) const
    {
        return std::ranges::count(server.requests, target, &ScriptedServer::Request::target);
    }
    static bool turnUntil(const std::function<bool()>& isDone)
    {
        QElapsedTimer watch;
        for (watch.start(); !isDone() && watch.elapsed() < 10'000;)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
        return isDone();
    }
    static void pass(std::chrono::milliseconds time)
    {
        QTimer timer;
        timer.start(time);
        awaited([](QTimer& t) -> QCoro::Task<> { co_await t; }(timer));
    }

    QTemporaryDir folder;
    PreferencesStore preferences{folder.filePath(u"p.sqlite"_s)};
    ScriptedServer server;
    QHash<QByteArray, QByteArray> answers;    // by target: a JSON object or an error status
    QByteArray errorBody = "{}";
    AccountAPI api{server.configuration(), preferences};
    FakeWebAuthentication web;
    QStringList opened;
    bool browserOpens = true;
    std::chrono::milliseconds syncInterval = 180s, startLimit = 8s;
    std::optional<AccountSession> session;
};

}    // namespace

TEST_F(AccountSessionTest, TheCheckAtTheStartSignsInOrOut)
{
    AccountSession& signedIn = started();
    EXPECT_TRUE(signedIn.isAuthenticated());
    EXPECT_TRUE(signedIn.isBalanceSyncRunning());
    EXPECT_EQ(signedIn.message(), QString());
    EXPECT_TRUE(turnUntil([&] { return signedIn.cloudCopyConfig().costCredits == 12; }));
    EXPECT_EQ(signedIn.displayName(), u"a@b.es"_s);

    // If the service does not send its settings, the session uses the fallback.
    answers["/api/publicaciones/config"] = "500";
    awaited(signedIn.refresh());
    EXPECT_TRUE(
        turnUntil([&] { return signedIn.cloudCopyConfig() == CloudCopyConfig::fallback(); }));

    answers["/api/auth/me"] = "401";
    session.emplace(api, surroundings());
    EXPECT_FALSE(awaited(session->bootstrap()));
    EXPECT_EQ(session->account(), AccountSummary());
    EXPECT_EQ(session->message(), u"Necesitas iniciar sesión."_s);
    EXPECT_FALSE(session->isProblem() || session->isLoading() || session->isBalanceSyncRunning());
}

TEST_F(AccountSessionTest, AServiceThatIsLateLeavesTheUserSignedOut)
{
    // The request for the copy configuration, which follows a sign-in, gets no answer yet.
    server.hold("/api/publicaciones/config");
    EXPECT_TRUE(started().isAuthenticated());
    EXPECT_TRUE(awaited(session->login(u"a"_s, u"b"_s)));
    EXPECT_TRUE(awaited(session->refresh()));
    EXPECT_FALSE(session->isWorking());
    EXPECT_EQ(session->cloudCopyConfig(), CloudCopyConfig::fallback());
    server.release();
    EXPECT_TRUE(turnUntil([&] { return session->cloudCopyConfig().costCredits == 12; }));

    startLimit = 300ms;
    server.answerNothing();
    session.emplace(api, surroundings());
    QCoro::Task<bool> check = session->bootstrap();
    EXPECT_TRUE(session->isLoading());
    EXPECT_FALSE(awaited(std::move(check)));
    EXPECT_EQ(session->message(),
              u"El servidor ha tardado demasiado en responder. Inténtalo otra vez."_s);
    EXPECT_TRUE(session->isUnreachable());
    EXPECT_FALSE(session->isLoading() || session->isAuthenticated());

    // The session may be destroyed while a request is under way.
    QCoro::Task<bool> left = session->login(u"a"_s, u"b"_s);
    EXPECT_TRUE(session->isWorking());
    session.reset();
    EXPECT_FALSE(awaited(std::move(left)));
}

TEST_F(AccountSessionTest, SigningOutLeavesNothingAndNothingBringsItBack)
{
    AccountSession& one = started();
    awaited(one.refreshPurchaseHistory());
    awaited(one.buyCredits(10000));
    server.hold("/api/auth/me");
    QCoro::Task<bool> late = one.refreshSilently();    // sent before logout()
    QCoro::Task<bool> latest = one.refresh();
    EXPECT_TRUE(awaited(one.logout()));
    server.release();
    awaited(std::move(late));
    awaited(std::move(latest));
    EXPECT_EQ(one.account(), AccountSummary());
    EXPECT_FALSE(one.isBalanceSyncRunning() || one.isWorking());
    EXPECT_FALSE(one.pendingCheckoutSessionId());
    EXPECT_TRUE(one.purchaseHistory().isEmpty());
    EXPECT_EQ(one.message(), u"Sesión cerrada."_s);
}

TEST_F(AccountSessionTest, ASessionThatStaysOnAFullDiskIsTold)
{
    preferences.setValue(u"tallerioSessionCookieHeader"_s, "tallerio_session=abc");
    AccountAPI holding(server.configuration(), preferences);
    AccountSession one(holding, surroundings());
    awaited(one.bootstrap());
    refuseWrites(true);
    EXPECT_TRUE(awaited(one.logout()));
    EXPECT_EQ(one.message(), u"Sesión cerrada, pero no se ha podido borrar de este equipo: no se "
                             "puede escribir en «%1»."_s.arg(folder.path()));
    EXPECT_TRUE(one.isProblem() && !one.isAuthenticated());
    refuseWrites(false);
}

TEST_F(AccountSessionTest, AFailedActionTellsWhyAndChangesNothing)
{
    AccountSession& one = started();
    answers["/api/auth/login"] = "400";
    errorBody = R"({"error":"invalid_credentials"})";
    EXPECT_FALSE(awaited(one.login(u"a"_s, u"b"_s)));
    EXPECT_EQ(one.message(), u"Email o contraseña incorrectos."_s);
    EXPECT_TRUE(one.isProblem() && !one.isUnreachable() && one.isAuthenticated());
    EXPECT_FALSE(one.isWorking());

    answers["/api/auth/me"] = "500";
    awaited(one.refreshSilently());
    EXPECT_EQ(one.message(), u"Email o contraseña incorrectos."_s);
    EXPECT_EQ(one.account().balance, 100);

    answers["/api/credits/social-copy/reserve"] = "402";
    errorBody = R"({"error":"insufficient_credits"})";
    QCoro::Task<> reserving = one.reserveCloudCopyCredits(5, u"r"_s);
    EXPECT_TRUE(one.isWorking() && !one.isActing());
    EXPECT_THROW(awaited(std::move(reserving)), AccountError);
    EXPECT_EQ(one.message(), u"No tienes créditos suficientes."_s);
    EXPECT_EQ(one.outcome(), u"Email o contraseña incorrectos."_s) << "screens show no charges";
    EXPECT_FALSE(one.isWorking());
    answers["/api/credits/social-copy/refund"] = R"({"balance":95,"cost":5,"ok":true})";
    awaited(one.refundCloudCopyCredits(5, u"r"_s));
    EXPECT_EQ(one.message(), u"5 créditos devueltos."_s);
    EXPECT_EQ(one.account().balance, 95);
    EXPECT_TRUE(one.isAuthenticated());
}

TEST_F(AccountSessionTest, ACheckoutStaysPendingUntilItIsConfirmed)
{
    AccountSession& one = started();
    EXPECT_FALSE(awaited(one.confirmPendingCheckout()));
    EXPECT_EQ(one.message(), u"No hay una compra pendiente."_s);
    EXPECT_EQ(asked("/api/stripe/confirm"), 0);

    awaited(one.buyCredits(10000));
    EXPECT_EQ(opened, QStringList{u"https://pago.es/1"_s});
    EXPECT_EQ(one.message(), u"Checkout abierto. Cuando pagues, pulsa Confirmar compra."_s);
    const QByteArray confirmation = std::exchange(answers["/api/stripe/confirm"], "402");
    errorBody = R"({"error":"checkout_not_paid"})";
    EXPECT_FALSE(awaited(one.confirmPendingCheckout()));
    EXPECT_EQ(one.message(), u"Stripe todavía no marca el pago como completado."_s);
    EXPECT_EQ(one.pendingCheckoutSessionId(), u"s1"_s);

    answers["/api/stripe/confirm"] = confirmation;
    EXPECT_TRUE(awaited(one.confirmPendingCheckout()));
    EXPECT_EQ(one.account().balance, 1100);
    EXPECT_TRUE(one.isAuthenticated());    // although the confirmation contains no profile
    EXPECT_FALSE(one.pendingCheckoutSessionId());
    EXPECT_EQ(one.purchaseHistory().size(), 1);
    EXPECT_EQ(one.message(), u"Compra confirmada."_s);
}

TEST_F(AccountSessionTest, OnlyPagesAreOpenedAndACheckoutIsNotLostWithoutABrowser)
{
    AccountSession& one = started();
    awaited(one.openPurchaseDocument(u"p"_s));
    EXPECT_TRUE(opened.isEmpty());
    EXPECT_TRUE(one.isProblem());
    answers["/api/account/purchases/link?purchaseId=p"] = R"({"url":"https://f.es/1"})";
    awaited(one.openPurchaseDocument(u"p"_s));
    EXPECT_EQ(one.message(), u"Factura abierta."_s);

    answers["/api/stripe/checkout"] = R"({"sessionId":"s1"})";
    awaited(one.buyCredits(1000));
    EXPECT_EQ(one.message(), u"Stripe no ha devuelto URL de pago."_s);
    EXPECT_FALSE(one.pendingCheckoutSessionId());
    answers["/api/stripe/checkout"] = R"({"url":"https://pago.es/2"})";
    awaited(one.buyCredits(1000));
    EXPECT_EQ(one.message(), u"Checkout abierto. Después refresca créditos."_s);

    browserOpens = false;
    answers["/api/stripe/checkout"] = R"({"url":"https://pago.es/3","sessionId":"s3"})";
    awaited(one.buyCredits(1000));
    EXPECT_EQ(one.pendingCheckoutSessionId(), u"s3"_s);
    EXPECT_TRUE(one.message().contains(u"https://pago.es/3"_s));
}

TEST_F(AccountSessionTest, LinksSignInConnectNetworksOrAreLeftAlone)
{
    AccountSession& one = started();
    const QList<std::pair<QString, QString>> told{
        {u"moltiva://auth?error=oauth_invalid_state"_s,
         u"La sesión de Google ha caducado. Inténtalo otra vez."_s},
        {u"moltiva://auth?error=oauth_not_configured&token=t"_s,
         u"El acceso con Google todavía no está configurado en Tallerio."_s},
        {u"moltiva://auth?error=x"_s, u"No se ha podido completar el acceso con Google."_s},
        {u"moltiva://auth"_s, u"No se ha podido completar el acceso con Google."_s},
        {u"moltiva://social-connected?status=error"_s,
         u"No se ha completado la conexión de la red social."_s},
        {u"moltiva://social-connected"_s, u"No se ha completado la conexión de la red social."_s},
    };
    for (const auto& [link, message] : told) {
        EXPECT_TRUE(one.handleDeepLink(QUrl(link)));
        EXPECT_EQ(one.message(), message);
    }
    EXPECT_EQ(one.socialConnectionRefreshToken(), 0);
    EXPECT_FALSE(one.handleDeepLink(QUrl(u"moltiva://other?status=ok"_s)));
    EXPECT_FALSE(one.handleDeepLink(QUrl(u"https://social-connected?status=ok"_s)));
    EXPECT_EQ(one.message(), told.last().second);

    EXPECT_TRUE(one.handleDeepLink(QUrl(u"moltiva://social-connected?status=ok"_s)));
    EXPECT_EQ(one.socialConnectionRefreshToken(), 1);
    EXPECT_EQ(one.message(), u"Red social conectada. Ya puedes volver a la ventana de publicar."_s);

    EXPECT_FALSE(one.handleDeepLink(QUrl(u"moltiva://auth?token="_s + QString(5000, u'x'))));
    for (int i = 0; i < 49; ++i)
        notificationCenter().post(Notification::deepLinkReceived,
                                  QUrl(u"moltiva://social-connected?status=ok"_s));
    EXPECT_EQ(one.socialConnectionRefreshToken(), 50);
}

// Anybody can make a link with a token: of an account of theirs, for instance.
TEST_F(AccountSessionTest, ALinkReplacesNoSignedInAccountUnlessTheUserAgrees)
{
    AccountSession& one = started();
    const QUrl link(u"moltiva://auth?token=a%2Bb%26c"_s);
    const auto exchanged = [this] { return asked("/api/auth/desktop/exchange"); };
    const auto isQuiet = [&] { return turnUntil([&] { return !one.isWorking(); }); };
    answers["/api/auth/desktop/exchange"] = R"({"balance":5,"profile":{"id":"2"}})";
    notificationCenter().post(Notification::deepLinkReceived, link);
    EXPECT_TRUE(one.asksToChangeAccount());
    one.handleDeepLink(link);
    EXPECT_TRUE(one.message().isEmpty()) << "the same link again";
    one.handleDeepLink(QUrl(u"moltiva://auth?token=otro"_s));
    EXPECT_TRUE(one.message().startsWith(u"Otro enlace"_s));
    one.answerLink(LinkAnswer::keepAccount);
    EXPECT_FALSE(one.asksToChangeAccount() || one.isWorking());
    EXPECT_EQ(one.message(), u"El enlace no se ha usado: sigues con tu cuenta."_s);
    EXPECT_EQ(exchanged(), 0);

    one.handleDeepLink(link);
    one.answerLink(LinkAnswer::changeAccount);
    EXPECT_TRUE(isQuiet());
    EXPECT_EQ(one.message(), u"Sesión iniciada con Google."_s);
    EXPECT_EQ(one.account().balance, 5);
    EXPECT_TRUE(std::ranges::any_of(server.requests, [](const auto& request) {
        return request.body == R"({"token":"a+b&c"})";
    }));

    // The link that the user's own sign-in awaits needs no question.
    awaited(one.openGoogleLogin());
    AccountSession::postGoogleAuthenticationResult({.callbackURL = link, .error = {}});
    EXPECT_TRUE(isQuiet());
    EXPECT_EQ(exchanged(), 2);
    one.handleDeepLink(link);
    EXPECT_TRUE(one.asksToChangeAccount()) << "but the next one does";

    // Signing out answers it. Of two links that come together the first signs in, the second asks.
    awaited(one.logout());
    EXPECT_FALSE(one.asksToChangeAccount());
    one.handleDeepLink(link);
    one.handleDeepLink(QUrl(u"moltiva://auth?token=otro"_s));
    EXPECT_TRUE(turnUntil([&] { return one.asksToChangeAccount(); }));
    EXPECT_EQ(exchanged(), 3);
}

TEST_F(AccountSessionTest, ALinkReplacesNoSessionThatTheServiceHasNotConfirmedYet)
{
    preferences.setValue(u"tallerioSessionCookieHeader"_s, "tallerio_session=abc");
    AccountAPI holding(server.configuration(), preferences);
    AccountSession one(holding, surroundings());
    const QByteArray signedIn = std::exchange(answers["/api/auth/me"], "503");
    EXPECT_FALSE(awaited(one.bootstrap()));
    ASSERT_TRUE(one.mayBeSignedIn());
    one.handleDeepLink(QUrl(u"moltiva://auth?token=t"_s));
    EXPECT_FALSE(one.isWorking());
    answers["/api/auth/me"] = signedIn;
    awaited(one.refresh());
    EXPECT_TRUE(turnUntil([&] { return one.asksToChangeAccount(); }));
    EXPECT_EQ(asked("/api/auth/desktop/exchange"), 0);
}

TEST_F(AccountSessionTest, ALinkWaitsForTheCheckAtTheStartAndTakesNothingOfAnotherUserAlong)
{
    AccountSession& one = started();
    awaited(one.refreshPurchaseHistory());
    awaited(one.buyCredits(10000));
    answers["/api/auth/desktop/exchange"] = R"({"balance":5,"profile":{"id":"2"}})";
    server.hold("/api/auth/me");
    answers["/api/auth/me"] = "401";
    QCoro::Task<bool> check = one.bootstrap();
    one.handleDeepLink(QUrl(u"moltiva://auth?token=t"_s));
    EXPECT_FALSE(one.isWorking());
    server.release();
    awaited(std::move(check));
    EXPECT_TRUE(turnUntil([&] { return !one.isWorking(); }));
    EXPECT_EQ(asked("/api/auth/desktop/exchange"), 1);
    EXPECT_EQ(one.account().balance, 5);
    EXPECT_TRUE(one.isBalanceSyncRunning());
    EXPECT_FALSE(one.pendingCheckoutSessionId());
    EXPECT_TRUE(one.purchaseHistory().isEmpty());
}

TEST_F(AccountSessionTest, WhatWasAskedForOneUserReachesNoOther)
{
    AccountSession& one = started();
    const auto come = [&](const QByteArray& id) {
        answers["/api/auth/me"] = R"({"balance":7,"profile":{"id":")" + id + "\"}}";
        awaited(one.refresh());
    };
    answers["/api/credits/social-copy/reserve"] = R"({"balance":95,"cost":5,"ok":true})";
    server.hold("/api/credits/social-copy/reserve");
    QCoro::Task<> reserving = one.reserveCloudCopyCredits(5, u"r"_s);
    come("2");
    server.release();
    EXPECT_THROW(awaited(std::move(reserving)), AccountError);
    EXPECT_EQ(one.account().balance, 7);
    EXPECT_EQ(one.message(), u"Cuenta actualizada."_s) << "nor is its failure told";

    server.hold("/api/account/purchases");
    QCoro::Task<bool> loading = one.refreshPurchaseHistory();
    come("3");
    server.release();
    awaited(std::move(loading));
    EXPECT_TRUE(one.purchaseHistory().isEmpty());

    server.hold("/api/stripe/confirm");
    awaited(one.buyCredits(1000));
    QCoro::Task<bool> confirming = one.confirmPendingCheckout();
    come("4");
    server.release();
    awaited(std::move(confirming));
    EXPECT_EQ(one.account().balance, 7);
    EXPECT_TRUE(one.purchaseHistory().isEmpty());
}

TEST_F(AccountSessionTest, GoogleGoesOverTheWindowWhereThereIsAWayElseThroughTheBrowser)
{
    AccountSession& one = started();
    awaited(one.openGoogleLogin());
    EXPECT_TRUE(one.isWorking());
    EXPECT_EQ(one.message(), u"Completa el acceso con Google."_s);
    web.complete({.callbackURL = {}, .error = GoogleAuthenticationResult::Failure::cancelled});
    EXPECT_FALSE(one.isWorking());
    EXPECT_EQ(one.message(), u"Acceso con Google cancelado."_s);
    EXPECT_TRUE(opened.isEmpty());

    web.starts = false;
    awaited(one.openGoogleLogin());
    EXPECT_FALSE(one.isWorking());
    EXPECT_EQ(one.message(), u"Completa el acceso con Google en el navegador."_s);
    EXPECT_EQ(opened, QStringList{api.googleOAuthURL().toString()});
}

TEST_F(AccountSessionTest, TheBalanceIsAskedForAgainAndAgainByOneTimer)
{
    syncInterval = 30ms;
    AccountSession& one = started();
    one.startBalanceSync();
    one.startBalanceSync();
    server.requests.clear();
    answers["/api/auth/me"] = R"({"balance":42,"profile":{"id":"1"}})";
    QElapsedTimer watch;
    watch.start();
    while (one.account().balance != 42 && watch.elapsed() < 10'000)
        pass(10ms);
    EXPECT_EQ(one.account().balance, 42);
    EXPECT_LE(asked("/api/auth/me"), 1 + watch.elapsed() / 30);    // no more than one timer sends
    one.stopBalanceSync();
    do {    // lets requests under way end
        server.requests.clear();
        pass(300ms);
    } while (asked("/api/auth/me") > 0 && watch.elapsed() < 20'000);
    EXPECT_EQ(asked("/api/auth/me"), 0);
}
