#include "account/AccountAPI.h"
#include "account/AccountError.h"
#include "account/AccountHttp.h"
#include "account/PublishRequest.h"
#include "platform/PreferencesStore.h"
#include "tests/account/Awaited.h"
#include "tests/account/ScriptedServer.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString cookieKey = u"tallerioSessionCookieHeader"_s;
const QString legacyKey = u"tallerioSessionToken"_s;
const QByteArray summary = R"({"balance":7,"profile":{"id":"1","email":"a@b.es"}})";

class AccountAPITest : public testing::Test {
protected:
    QTemporaryDir folder;
    PreferencesStore preferences{folder.filePath(u"p.sqlite"_s)};
    ScriptedServer server;

    std::unique_ptr<AccountAPI> client(RequestLimits limits = {})
    {
        return std::make_unique<AccountAPI>(server.configuration(), preferences, nullptr, limits);
    }
    // The file of a request that publishes an image of `bytes` bytes.
    QString publishRequest(qsizetype bytes = 2)
    {
        const QString image = folder.filePath(u"image"_s), path = folder.filePath(u"request"_s);
        QFile file(image);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes == 2 ? QByteArray("\0\1", 2) : QByteArray(bytes, 'x'));
        file.close();
        const SocialPublishRequest request{
            u"instagram"_s, u"c"_s, {{u"f"_s, u"image/png"_s, {}}}, u"r"_s};
        QFile::remove(path);
        const auto written = writePublishRequest(request, {image}, path);
        EXPECT_EQ(written.bytes, sizeOfPublishRequest(request, {bytes}));
        return path;
    }
    void answer(const QByteArray& bytes)
    {
        server.setAnswer([bytes](const auto&) { return bytes; });
    }
    void answer(int status, const QByteArray& body, const QByteArray& headers = {})
    {
        answer(ScriptedServer::reply(status, body, headers));
    }
};

// The message for the user of a call that failed; empty when it succeeded.
template <typename Result>
QString outcome(QCoro::Task<Result> task)
{
    try {
        awaited(std::move(task));
        return {};
    } catch (const std::exception& error) {
        return readable(error);
    }
}

template <typename Result>
std::optional<TransportError::Kind> transportFailure(QCoro::Task<Result> task)
{
    try {
        awaited(std::move(task));
    } catch (const TransportError& error) {
        return error.kind();
    } catch (const AccountError&) {
    }
    return std::nullopt;
}

}    // namespace

TEST_F(AccountAPITest, EachEndpointAsksAndReadsAsTheServiceExpects)
{
    const auto api = client();
    QFile noPhoto(folder.filePath(u"a.webp"_s));
    ASSERT_TRUE(noPhoto.open(QIODevice::WriteOnly));
    noPhoto.write("no");
    noPhoto.close();
    struct Row {
        QByteArray asked, body, reply;
        std::function<QString()> call;
    };
    const QByteArray ok = R"({"ok":true})", credits = R"({"balance":3,"cost":5,"ok":true})";
    const auto text = [](int number) { return QString::number(number); };
    const QList<Row> rows{
        {"GET /api/auth/me", "", summary, [&] { return text(awaited(api->me()).balance); }},
        {"POST /api/auth/login", R"({"email":"a","password":"ñ\""})", summary,
         [&] { return text(awaited(api->login(u"a"_s, u"ñ\""_s)).balance); }},
        {"POST /api/auth/register", R"({"email":"a","password":"p"})", summary,
         [&] { return text(awaited(api->registerAccount(u"a"_s, u"p"_s)).balance); }},
        {"POST /api/auth/logout", "{}", "{}", [&] { return outcome(api->logout()); }},
        {"PATCH /api/auth/profile", R"({"fullName":"Lucía"})", summary,
         [&] { return *awaited(api->updateProfile(u"Lucía"_s)).profile->email; }},
        {"POST /api/auth/password",
         R"({"currentPassword":"a","newPassword":"b","confirmNewPassword":"c"})", ok,
         [&] { return outcome(api->changePassword(u"a"_s, u"b"_s, u"c"_s)); }},
        {"POST /api/auth/password-reset/request", R"({"email":"a"})", "{}",
         [&] { return outcome(api->requestPasswordReset(u"a"_s)); }},
        {"POST /api/auth/desktop/exchange", R"({"token":"t"})", summary,
         [&] { return text(awaited(api->exchangeDesktopAuthToken(u"t"_s)).balance); }},
        {"POST /api/stripe/checkout", R"({"credits":10000,"client":"macos-native"})",
         R"({"url":"https://pago.es/1","sessionId":null})",
         [&] { return awaited(api->startCheckout(10000)).url->toString(); }},
        {"POST /api/stripe/confirm", R"({"sessionId":"s"})", R"({"ok":true,"balance":12})",
         [&] { return text(awaited(api->confirmCheckout(u"s"_s)).balance); }},
        {"GET /api/account/purchases", "",
         R"({"purchases":[{"id":"1","kind":"credits","amountCents":1000,"detail":"d",
             "invoiceURL":""},{"id":2}]})",
         [&] { return text(int(awaited(api->purchaseHistory()).purchases.size())); }},
        {"GET /api/account/purchases/link?purchaseId=a%2Fb%26%3D%C3%B1%20", "",
         R"({"url":"https://f.es/1"})",
         [&] { return awaited(api->purchaseDocumentLink(u"a/b&=ñ "_s)).url.toString(); }},
        {"POST /api/credits/social-copy/reserve", R"({"cost":5,"requestId":"r"})", credits,
         [&] { return text(awaited(api->reserveSocialCopyCredits(5, u"r"_s)).balance); }},
        {"POST /api/credits/social-copy/refund", R"({"cost":5,"requestId":"r"})", credits,
         [&] { return text(awaited(api->refundSocialCopyCredits(5, u"r"_s)).balance); }},
        {"GET /api/publicaciones/config", "",
         R"({"enabled":false,"providerLabel":"p","costCredits":9,"macDownloadURL":"no"})",
         [&] { return text(awaited(api->socialCopyConfig()).costCredits); }},
        {"POST /api/publicaciones/generate",
         R"({"requestId":"r","objective":"o","format":"Post cuadrado","mimeType":"image/webp","imageBase64":"bm8="})",
         R"({"ok":true,"copy":{"title":"t","subtitle":"","tagline":"","callToAction":"",
             "publicationCaption":"","imageNotes":""}})",
         [&] {
             const QUrl image = QUrl::fromLocalFile(noPhoto.fileName());
             return awaited(api->generateSocialCopy(image, u"o"_s, SocialFormat::square, u"r"_s))
                 .title;
         }},
        {"POST /api/publicaciones/templates/update",
         R"({"fileName":"a.json","templateJSONBase64":"e30="})", ok,
         [&] { return outcome(api->uploadTemplate(u"a.json"_s, "{}", std::nullopt)); }},
        {"POST /api/publicaciones/templates/delete", R"({"fileName":"a.json"})", ok,
         [&] { return outcome(api->deleteTemplate(u"a.json"_s)); }},
        {"GET /api/publicaciones/templates", "", R"({"version":"2"})",
         [&] {
             const TemplateManifest manifest = awaited(api->templateManifest({}));
             return manifest.templates || manifest.deleted ? QString() : manifest.version;
         }},
        {"GET /api/publicaciones/templates?since=a%2Fb", "",
         R"({"version":"2","templates":[{"fileName":"a.json","sha256":"f","bytes":3,"versions":"x"},
             {"fileName":"no digest"},7],"deleted":["b.json",8]})",
         [&] {
             const TemplateManifest manifest = awaited(api->templateManifest(u"a/b"_s));
             EXPECT_EQ(manifest.deleted, QStringList{u"b.json"_s});
             return manifest.templates->size() == 1 ? manifest.templates->first().fileName
                                                    : QString();
         }},
        {"GET /api/publicaciones/templates/file?name=..%2Fa.json&version=previous", "",
         R"({"fileName":"a.json","sha256":"f","jsonBase64":"e30="})",
         [&] {
             return QString::fromUtf8(
                 awaited(api->templateFile(u"../a.json"_s, AccountAPI::SharedVersion::previous))
                     .jsonBase64);
         }},
        {"GET /api/social/status", "",
         R"({"ok":true,"networks":[{"network":"instagram","name":"I","provider":"p",
             "isConnected":true,"connectURL":"https://c.es"}]})",
         [&] {
             const auto networks = awaited(api->socialStatus()).networks;
             return networks.value(0).isProviderConfigured() ? networks[0].name : QString();
         }},
        {"POST /api/social/connect-token", R"({"network":"facebook"})",
         R"({"ok":true,"url":"https://c.es/t","expiresInSeconds":300})",
         [&] { return text(awaited(api->socialConnectToken(u"facebook"_s)).expiresInSeconds); }},
        {"POST /api/social/publish",
         R"({"network":"instagram","caption":"c","images":[{"fileName":"f","mimeType":"image/png","dataBase64":"AAE="}],"requestId":"r","placement":"feed"})",
         R"({"url":"https://p.es/1"})",
         [&] { return awaited(api->publishSocialPost(publishRequest())).url->toString(); }},
    };
    const QStringList read{u"7"_s,  u"7"_s,      u"7"_s,
                           {},      u"a@b.es"_s, {},
                           {},      u"7"_s,      u"https://pago.es/1"_s,
                           u"12"_s, u"1"_s,      u"https://f.es/1"_s,
                           u"3"_s,  u"3"_s,      u"9"_s,
                           u"t"_s,  {},          {},
                           u"2"_s,  u"a.json"_s, u"{}"_s,
                           u"I"_s,  u"300"_s,    u"https://p.es/1"_s};
    ASSERT_EQ(rows.size(), read.size());
    for (qsizetype i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(rows[i].asked.toStdString());
        answer(200, rows[i].reply);
        server.requests.clear();
        EXPECT_EQ(rows[i].call(), read[i]);
        ASSERT_EQ(server.requests.size(), 1);
        const auto& asked = server.requests.first();
        EXPECT_EQ(asked.method + ' ' + asked.target, rows[i].asked);
        EXPECT_EQ(asked.body, rows[i].body);
        EXPECT_EQ(asked.header("Accept"), "application/json");
        EXPECT_EQ(asked.header("X-Client"), "Moltiva-macOS");
        EXPECT_EQ(asked.header("Content-Type"), rows[i].body.isEmpty() ? "" : "application/json");
        EXPECT_FALSE(asked.head.toLower().contains("\ncookie:"));
    }
    EXPECT_EQ(api->googleOAuthURL(),
              QUrl(server.url().toString() + u"/api/auth/oauth/google?client=moltiva-macos"_s));
    EXPECT_EQ(api->socialConnectionURL(u"Instagram"_s).query(),
              u"network=instagram&client=moltiva-macos"_s);
}

TEST_F(AccountAPITest, FailuresBecomeSentences)
{
    struct Row {
        int status;
        QByteArray body;
        QString text;
    };
    const QString general = u"No se ha podido completar la operación."_s;
    const QString unreadable = u"No se ha podido leer la respuesta del servidor."_s;
    const QList<Row> rows{
        {500, R"({"error":"insufficient_credits"})", u"No tienes créditos suficientes."_s},
        {409, R"({"error":"social_account_not_connected","reason":"x"})",
         u"Necesitas conectar esa red en Ejemplo.es."_s},
        {429, R"({"error":"never_heard_of"})", general},
        {500, "<html><b>oops", general},
        {404, R"({"error":7})", general},
        {304, "", general},
        {401, R"({"error":"insufficient_credits"})", u"Necesitas iniciar sesión."_s},
        {200, "<html>", unreadable},
        {200, R"({"balance":"7"})", unreadable},
        {200, R"({"balance":7)", unreadable},
        {204, "", unreadable},
        {200, QByteArray(200'000, '['), unreadable},
    };
    const auto api = client();
    for (const Row& row : rows) {
        SCOPED_TRACE(row.body.left(60).toStdString());
        answer(row.status, row.body);
        EXPECT_EQ(outcome(api->me()), row.text);
    }
    answer(200, R"({"balance":5000000000})");
    EXPECT_EQ(awaited(api->me()).balance, 5'000'000'000);
    answer(400, R"({"error":"email_exists"})");
    try {
        awaited(api->me());
        ADD_FAILURE();
    } catch (const AccountError& error) {
        EXPECT_EQ(error.code(), u"email_exists"_s);
    }
}

TEST(AccountReplies, EveryCodeOfTheServiceHasItsSentence)
{
    QSet<QString> texts{u"No se ha podido completar la operación."_s};
    const QStringList codes =
        u"database_unavailable email_exists invalid_credentials invalid_credit_amount "
        "stripe_not_configured stripe_request_failed checkout_not_paid checkout_not_recorded "
        "invalid_purchase purchase_document_unavailable insufficient_credits "
        "invalid_credit_request credit_not_reserved provider_key_missing provider_request_failed "
        "provider_invalid_response provider_not_supported model_not_configured invalid_image "
        "invalid_social_publish_request invalid_social_publish_image social_upload_failed "
        "social_account_not_connected social_provider_not_configured "
        "social_connection_incomplete social_publish_in_progress "
        "social_provider_publish_failed invalid_social_network admin_required invalid_template "
        "template_upload_failed"_s.split(u' ');
    for (const QString& code : codes) {
        const QByteArray body = "{\"error\":\"" + code.toUtf8() + "\",\"reason\":null}";
        try {
            acceptedBody({.status = 418, .headers = {}, .body = body}, u"Sitio"_s);
            ADD_FAILURE() << code.toStdString();
        } catch (const AccountError& error) {
            EXPECT_EQ(error.code(), code);
            EXPECT_FALSE(error.text().contains(u'%'));
            texts.insert(error.text());
        }
    }
    EXPECT_EQ(texts.size(), codes.size() + 1);
    EXPECT_EQ(acceptedBody({.status = 299, .headers = {}, .body = "x"}, {}), "x");
}

TEST_F(AccountAPITest, TheSessionIsOneCookieThatOutlivesTheProgram)
{
    preferences.setValue(legacyKey, "old");
    auto api = client();
    // The client takes its cookie from an answer of any status, without attributes, and ignores
    // other cookies.
    answer(500, "{}",
           "Set-Cookie: other=1; Path=/\r\n"
           "set-cookie: tallerio_session=abc; Path=/; HttpOnly\r\nSet-Cookie: last=2\r\n");
    outcome(api->me());
    EXPECT_EQ(server.requests.last().header("Cookie"), "tallerio_session=old");
    EXPECT_EQ(preferences.value(cookieKey), "tallerio_session=abc");
    EXPECT_FALSE(preferences.contains(legacyKey));

    answer(200, summary, "Set-Cookie: tallerio_session=; Path=/\r\n");
    api = client();
    outcome(api->me());
    EXPECT_EQ(server.requests.last().header("Cookie"), "tallerio_session=abc");
    EXPECT_EQ(preferences.value(cookieKey), "tallerio_session=abc");

    answer(401, "{}");
    outcome(api->me());
    EXPECT_FALSE(preferences.contains(cookieKey));
    answer(200, summary);
    outcome(api->me());
    EXPECT_EQ(server.requests.last().header("Cookie"), "");
}

TEST_F(AccountAPITest, ARefusedSessionTakesNoNewerOneWithIt)
{
    preferences.setValue(cookieKey, "tallerio_session=old");
    const auto api = client();
    server.setAnswer([](const ScriptedServer::Request& request) {
        const bool isRefused =
            !request.target.endsWith("login") && !request.header("Cookie").contains("of another");
        return isRefused
                   ? ScriptedServer::reply(401, "{}")
                   : ScriptedServer::reply(200, summary, "Set-Cookie: tallerio_session=new\r\n");
    });
    server.hold("/api/auth/me");
    QCoro::Task<AccountSummary> late = api->me();    // sent with the old session
    outcome(api->login(u"a"_s, u"b"_s));
    server.release();
    EXPECT_NE(outcome(std::move(late)), QString());
    EXPECT_TRUE(api->holdsSession());
    EXPECT_EQ(preferences.value(cookieKey), "tallerio_session=new");

    // Another program has stored its session. The client sends no other request with that session
    // until me() has told whose it is.
    preferences.setValue(cookieKey, "tallerio_session=of another");
    EXPECT_NE(outcome(api->reserveSocialCopyCredits(5, u"r"_s)), QString());
    EXPECT_NE(outcome(api->reserveSocialCopyCredits(5, u"r"_s)), QString());
    EXPECT_FALSE(api->holdsSession());
    EXPECT_EQ(preferences.value(cookieKey), "tallerio_session=of another");
    outcome(api->me());
    EXPECT_TRUE(api->holdsSession());
}

TEST_F(AccountAPITest, ALateAnswerBringsNothingBackAndEndsNothingElse)
{
    preferences.setValue(cookieKey, "tallerio_session=old");
    auto api = client();
    const QByteArray renewed = "Set-Cookie: tallerio_session=renewed\r\n";
    server.setAnswer([&](const ScriptedServer::Request& request) {
        const bool isSignIn = request.target.endsWith("login");
        return ScriptedServer::reply(
            200, summary, isSignIn ? QByteArray("Set-Cookie: tallerio_session=new\r\n") : renewed);
    });
    server.hold("/api/auth/me");
    QCoro::Task<AccountSummary> late = api->me();
    outcome(api->logout());
    server.release();
    outcome(std::move(late));
    EXPECT_FALSE(api->holdsSession() || preferences.contains(cookieKey)) << "after a sign-out";

    preferences.setValue(cookieKey, "tallerio_session=of another");
    api = client();
    outcome(api->logout());
    preferences.setValue(cookieKey, "tallerio_session=of another");
    server.hold("/api/auth/me");
    late = api->me();    // asks with the stored session
    outcome(api->login(u"a"_s, u"b"_s));
    server.release();
    outcome(std::move(late));
    EXPECT_EQ(preferences.value(cookieKey), "tallerio_session=new") << "after a sign-in";
    outcome(api->me());
    EXPECT_EQ(server.requests.last().header("Cookie"), "tallerio_session=new");

    // A stored session that the service refuses is removed.
    outcome(api->logout());
    preferences.setValue(cookieKey, "tallerio_session=of another");
    answer(401, "{}");
    outcome(api->me());
    EXPECT_FALSE(preferences.contains(cookieKey));
}

TEST_F(AccountAPITest, NothingOfASessionStaysInTheStoreAfterItsEnd)
{
    const auto api = client();
    const auto isAnywhere = [&](const QByteArray& secret) {
        bool isFound = false;
        for (const QString& name : {u"p.sqlite"_s, u"p.sqlite-wal"_s}) {
            QFile file(folder.filePath(name));
            isFound =
                isFound || (file.open(QIODevice::ReadOnly) && file.readAll().contains(secret));
        }
        return isFound;
    };
    for (const QByteArray secret : {"secret-1", "secret-2"}) {
        answer(200, summary, "Set-Cookie: tallerio_session=" + secret + "\r\n");
        outcome(api->login(u"a"_s, u"b"_s));
        EXPECT_TRUE(api->isSessionKept() && isAnywhere(secret));
        preferences.setValue(u"other"_s, QByteArray(300'000, 'x'));
    }
    EXPECT_FALSE(isAnywhere("secret-1")) << "replaced by another";
    answer(200, "{}");
    outcome(api->logout());
    EXPECT_FALSE(isAnywhere("secret-2"));

    PreferencesStore nowhere(u"/proc/moltiva/p.sqlite"_s);
    AccountAPI forgetful(server.configuration(), nowhere);
    answer(200, summary, "Set-Cookie: tallerio_session=a\r\n");
    outcome(forgetful.login(u"a"_s, u"b"_s));
    EXPECT_TRUE(forgetful.holdsSession() && !forgetful.isSessionKept());
}

TEST_F(AccountAPITest, ASessionIsOfTheServiceThatGaveItAlone)
{
    answer(200, summary, "Set-Cookie: tallerio_session=mine\r\n");
    outcome(client()->me());
    ScriptedServer another([](const auto&) { return ScriptedServer::reply(401, "{}"); });
    AccountAPI other(another.configuration(), preferences);
    EXPECT_NE(outcome(other.me()), QString());
    EXPECT_EQ(another.requests.last().header("Cookie"), "");
    outcome(client()->me());
    EXPECT_EQ(server.requests.last().header("Cookie"), "tallerio_session=mine");
}

TEST_F(AccountAPITest, APairOfServiceAndSiteSharesOneSession)
{
    ScriptedServer site, otherSite;
    const QByteArray none = R"({"ok":true,"networks":[]})";
    const auto serving = [&](ScriptedServer& one, int status, const QByteArray& cookie = {}) {
        const QByteArray header =
            cookie.isEmpty() ? cookie : "Set-Cookie: tallerio_session=" + cookie + "\r\n";
        one.setAnswer([=](const auto& request) {
            const bool isSite = request.target == "/api/social/status";
            return ScriptedServer::reply(status, isSite ? none : summary, header);
        });
    };
    const auto pair = [&](const QUrl& other) {
        ServiceConfiguration configuration = server.configuration();
        configuration.site = other;
        return std::make_unique<AccountAPI>(configuration, preferences);
    };
    serving(server, 200, "first");
    serving(site, 200, "second");
    serving(otherSite, 200);
    auto api = pair(site.url());
    outcome(api->login(u"a"_s, u"b"_s));
    EXPECT_EQ(outcome(api->socialStatus()), QString());
    EXPECT_EQ(site.requests.last().header("Cookie"), "tallerio_session=first");
    outcome(pair(site.url())->me());
    EXPECT_EQ(server.requests.last().header("Cookie"), "tallerio_session=second") << "renewed";

    outcome(pair(otherSite.url())->socialStatus());
    EXPECT_EQ(otherSite.requests.last().header("Cookie"), "") << "of another pair";
    outcome(client()->me());
    EXPECT_EQ(server.requests.last().header("Cookie"), "") << "of the service alone";
    outcome(pair(site.url())->me());
    EXPECT_EQ(server.requests.last().header("Cookie"), "") << "of the service alone, to the pair";
}

TEST_F(AccountAPITest, EitherOfAPairEndsItsSessionAndOnePlaceKeepsTheOldOne)
{
    ScriptedServer site([](const auto&) { return ScriptedServer::reply(401, "{}"); });
    ServiceConfiguration configuration = server.configuration();
    configuration.site = site.url();
    answer(200, summary, "Set-Cookie: tallerio_session=a\r\n");
    AccountAPI api(configuration, preferences);
    outcome(api.me());
    EXPECT_TRUE(preferences.contains(cookieKey));
    EXPECT_NE(outcome(api.socialStatus()), QString());
    EXPECT_FALSE(preferences.contains(cookieKey) || api.holdsSession());

    // Earlier builds stored the service's origin.
    const QByteArray origin = server.url().toEncoded();
    preferences.setValue(cookieKey, "tallerio_session=old");
    preferences.setValue(u"moltiva.sessionOrigin"_s, origin);
    EXPECT_FALSE(AccountAPI(configuration, preferences).holdsSession());
    EXPECT_TRUE(client()->holdsSession());
    configuration.site = QUrl(server.url().toString() + u"/web?x"_s);
    EXPECT_TRUE(AccountAPI(configuration, preferences).holdsSession());
}

TEST_F(AccountAPITest, ASignOutForgetsTheSessionAlsoWhereItHadEnded)
{
    for (const int status : {200, 401}) {
        preferences.setValue(cookieKey, "tallerio_session=a");
        const auto api = client();
        answer(status, "{}", "Set-Cookie: tallerio_session=deleted; Max-Age=0\r\n");
        EXPECT_EQ(outcome(api->logout()), QString());
        EXPECT_FALSE(preferences.contains(cookieKey));
    }
    preferences.setValue(cookieKey, "tallerio_session=a");
    answer("no HTTP at all\r\n\r\n");
    EXPECT_EQ(outcome(client()->logout()), QString());
    EXPECT_FALSE(preferences.contains(cookieKey));
    preferences.setValue(cookieKey, "tallerio_session=a");
    answer(500, "{}");
    EXPECT_NE(outcome(client()->logout()), QString());
    EXPECT_TRUE(preferences.contains(cookieKey));
}

TEST_F(AccountAPITest, RedirectionsAreFollowedWithinTheOriginAlone)
{
    ScriptedServer elsewhere;
    elsewhere.setAnswer([](const auto&) { return ScriptedServer::reply(200, summary); });
    const auto redirecting = [](int status, const QByteArray& location) {
        return [=](const ScriptedServer::Request& request) {
            return request.target == "/there"
                       ? ScriptedServer::reply(200, summary)
                       : ScriptedServer::reply(status, "",
                                               "Set-Cookie: tallerio_session=new\r\n"
                                               "Location: " +
                                                   location + "\r\n");
        };
    };
    for (const int status : {302, 307}) {
        server.requests.clear();
        preferences.setValue(cookieKey, "tallerio_session=a");
        const auto api = client();
        server.setAnswer(redirecting(status, "/there"));
        EXPECT_EQ(outcome(api->login(u"a"_s, u"b"_s)), QString());
        ASSERT_EQ(server.requests.size(), 2);
        EXPECT_EQ(server.requests[0].header("Cookie"), "tallerio_session=a");
        EXPECT_EQ(server.requests[1].header("Cookie"), "tallerio_session=new");
        EXPECT_EQ(server.requests[1].method, status == 302 ? "GET" : "POST");
        EXPECT_EQ(server.requests[1].body.isEmpty(), status == 302);
    }
    const auto api = client();
    server.setAnswer(redirecting(302, elsewhere.url().toString().toUtf8() + "/there"));
    EXPECT_EQ(outcome(api->me()), u"No se ha podido completar la operación."_s);
    EXPECT_TRUE(elsewhere.requests.isEmpty());

    server.requests.clear();
    server.setAnswer(redirecting(302, "/round"));
    EXPECT_EQ(outcome(api->me()), u"No se ha podido completar la operación."_s);
    EXPECT_LT(server.requests.size(), 10);
}

TEST_F(AccountAPITest, AConnectionThatDropsIsAFailureAndNothingIsAskedTwice)
{
    const QByteArray whole = ScriptedServer::reply(200, summary, "X-Padding: 1\r\n");
    const QByteArray chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                               "40\r\n{\"balance\":7";
    const qsizetype body = whole.indexOf("\r\n\r\n") + 4;
    const QList<QByteArray> cut{"",
                                whole.left(5),
                                whole.left(12),
                                whole.left(20),
                                whole.left(body - 3),
                                whole.left(body),
                                whole.left(body + 10),
                                whole.chopped(1),
                                chunked};
    const auto api = client();
    for (const QByteArray& bytes : cut) {
        SCOPED_TRACE(bytes.toStdString());
        answer(bytes);
        server.requests.clear();
        EXPECT_NE(outcome(api->login(u"a"_s, u"b"_s)), QString());
        EXPECT_EQ(server.requests.size(), 1);
    }
    answer(whole);
    EXPECT_EQ(outcome(api->me()), QString());
}

namespace {

// Reads a request up to a given byte of its body, sends an answer and closes the connection.
class ClosingServer : public QTcpServer {
public:
    qint64 bodyBytes = 0;    // -1: closes before it reads anything
    QByteArray answer;

    explicit ClosingServer()
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket* socket = nextPendingConnection();
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            m_received.clear();
            if (bodyBytes < 0) {
                socket->abort();
                return;
            }
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
        });
    }
    ServiceConfiguration configuration() const
    {
        const QUrl url(u"http://127.0.0.1:%1"_s.arg(serverPort()));
        ServiceConfiguration made;
        made.service = made.site = url;
        return made;
    }

private:
    void read(QTcpSocket* socket)
    {
        m_received += socket->readAll();
        const qsizetype head = m_received.indexOf("\r\n\r\n");
        if (head < 0 || m_received.size() - head - 4 < bodyBytes)
            return;
        m_received.clear();
        socket->write(answer);
        socket->flush();
        socket->disconnectFromHost();
    }

    QByteArray m_received;
};

}    // namespace

TEST_F(AccountAPITest, APostThatMayHaveBeenPublishedIsTold)
{
    constexpr qsizetype image = 12'000'000;    // more than the buffers of the system hold
    const QString large = publishRequest(image);
    const qint64 whole = QFileInfo(large).size();
    const QByteArray accepted = ScriptedServer::reply(200, R"({"url":"https://p.es/1"})");
    struct Row {
        const char* label;
        qint64 bodyBytes;
        QByteArray answer;
        bool wasSent;
    };
    const QList<Row> rows{
        {"at once", -1, "", false},
        {"after the head", 0, "", false},
        {"in the middle of the body", whole / 4, "", false},
        {"after the body", whole, "", true},
        {"after half an answer", whole, accepted.left(10), true},
        {"in the body of the answer", whole, accepted.chopped(3), true},
        {"after something else", whole, "no HTTP at all\r\n\r\n", true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        ClosingServer closing;
        closing.bodyBytes = row.bodyBytes;
        closing.answer = row.answer;
        AccountAPI api(closing.configuration(), preferences);
        qint64 sent = 0;
        try {
            awaited(api.publishSocialPost(large, [&](qint64 bytes) { sent = bytes; }));
            ADD_FAILURE();
        } catch (const TransportError& error) {
            EXPECT_EQ(error.wasSent(), row.wasSent);
            EXPECT_EQ(sent == whole, row.wasSent);
        }
    }
}

TEST_F(AccountAPITest, APublicationStopsUntilItsLastByteHasLeft)
{
    const QString large = publishRequest(12'000'000);
    const qint64 whole = QFileInfo(large).size();
    ClosingServer closing;
    closing.bodyBytes = whole;
    closing.answer = ScriptedServer::reply(200, R"({"url":"https://p.es/1"})");
    AccountAPI api(closing.configuration(), preferences);
    for (const qint64 stopAt : {qint64(1), whole / 2, whole}) {
        SCOPED_TRACE(stopAt);
        std::stop_source stop;
        qint64 sent = 0;
        const auto stopThere = [&](qint64 bytes) {
            EXPECT_GE(bytes, sent);
            sent = bytes;
            if (bytes >= stopAt)
                QTimer::singleShot(0, [&stop] { stop.request_stop(); });
        };
        QCoro::Task<SocialPublishResponse> posting =
            api.publishSocialPost(large, stopThere, stop.get_token());
        if (stopAt < whole)
            EXPECT_EQ(transportFailure(std::move(posting)), TransportError::Kind::stopped);
        else
            EXPECT_EQ(awaited(std::move(posting)).url, QUrl(u"https://p.es/1"_s));
        EXPECT_EQ(sent == whole, stopAt == whole);
    }
}

TEST_F(AccountAPITest, ARequestThatCannotBeReadIsNeverSent)
{
    const auto api = client();
    EXPECT_EQ(transportFailure(api->publishSocialPost(folder.filePath(u"none"_s))),
              TransportError::Kind::unreadableBody);
    EXPECT_TRUE(server.requests.isEmpty());
    const QString large = publishRequest(12'000'000);
    const auto cut = [&](qint64) { QFile::resize(large, 100); };
    EXPECT_EQ(transportFailure(api->publishSocialPost(large, cut)),
              TransportError::Kind::unreadableBody);
    EXPECT_TRUE(server.requests.isEmpty());

    const SocialPublishRequest request{u"instagram"_s, {}, {{u"f"_s, u"image/png"_s, {}}}, u"r"_s};
    const QString image = folder.filePath(u"image"_s), path = folder.filePath(u"written"_s);
    EXPECT_FALSE(
        writePublishRequest(request, {folder.filePath(u"none"_s)}, path).problem.isEmpty());
    EXPECT_FALSE(writePublishRequest(request, {image}, u"/dev/full/x"_s).problem.isEmpty());
    std::stop_source stop;
    stop.request_stop();
    EXPECT_TRUE(writePublishRequest(request, {image}, path, stop.get_token()).isStopped);
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(AccountAPITest, AnAcceptedPostIsASuccessWhateverItsAddress)
{
    const QByteArray longAddress = "https://p.es/" + QByteArray(100'000, 'a');
    const QList<QByteArray> answers{
        "{}",
        R"({"id":7,"status":{},"url":7})",
        R"({"ok":7})",
        R"({"url":"javascript:alert`1`"})",
        R"({"url":"file:///etc/passwd"})",
        R"({"url":"/publicacion/1"})",
        R"({"url":"https://"})",
        R"({"url":"ftp://p.es/1"})",
        "{\"url\":\"" + longAddress + "\"}",
    };
    const QString request = publishRequest();
    const auto api = client();
    for (const QByteArray& body : answers) {
        SCOPED_TRACE(body.left(60).toStdString());
        answer(201, body);
        EXPECT_EQ(awaited(api->publishSocialPost(request)).url, std::nullopt);
    }
    answer(200, R"({"id":7,"url":"https://p.es/1"})");
    EXPECT_EQ(awaited(api->publishSocialPost(request)).url, QUrl(u"https://p.es/1"_s));
}

TEST_F(AccountAPITest, OnlyTheServiceTellsWhatBecameOfAPost)
{
    struct Row {
        int status;
        QByteArray body;
        bool isRefusal;    // else the post may have been published
    };
    const QList<Row> rows{
        {200, "", false},
        {200, "<html>", false},
        {200, "[]", false},
        {201, QByteArray(70 << 20, '{'), false},
        {200, R"({"ok":false,"url":"https://p.es/1"})", false},
        {301, "", false},
        {302, "", false},
        {303, R"({"url":"https://p.es/1"})", false},
        {502, "<html>502 Bad Gateway</html>", false},
        {504, R"({"error":"Gateway Timeout"})", false},
        {500, QByteArray(70 << 20, '{'), false},
        {500, R"({"error":"social_provider_publish_failed"})", true},
        {413, "<html>", true},
        {429, "", true},
    };
    const QString request = publishRequest();
    const auto api = client();
    for (const Row& row : rows) {
        SCOPED_TRACE(row.status);
        server.requests.clear();
        server.setAnswer([&](const ScriptedServer::Request& asked) {
            return asked.method == "POST"
                       ? ScriptedServer::reply(row.status, row.body, "Location: /there\r\n")
                       : ScriptedServer::reply(200, R"({"url":"https://p.es/2"})");
        });
        try {
            awaited(api->publishSocialPost(request));
            ADD_FAILURE();
        } catch (const AccountError& error) {
            EXPECT_EQ(error.kind() == AccountError::Kind::message, row.isRefusal);
        }
        EXPECT_EQ(server.requests.size(), 1) << "no other page is asked";
    }
}

TEST_F(AccountAPITest, WaitsNoLongerThanItsLimitsAndTakesNoMoreThanItsMemory)
{
    const auto api = client({.withoutBody = 60ms, .withBody = 30s});
    server.answerNothing();
    EXPECT_EQ(transportFailure(api->me()), TransportError::Kind::timedOut);
    EXPECT_EQ(outcome(api->me()),
              u"El servidor ha tardado demasiado en responder. Inténtalo otra vez."_s);

    std::stop_source stop;
    QCoro::Task<AccountSummary> stopped = api->login(u"a"_s, u"b"_s, stop.get_token());
    QTimer::singleShot(20ms, [&stop] { stop.request_stop(); });
    EXPECT_EQ(transportFailure(std::move(stopped)), TransportError::Kind::stopped);
    EXPECT_EQ(transportFailure(api->login(u"a"_s, u"b"_s, stop.get_token())),
              TransportError::Kind::stopped);

    ScriptedServer endless(
        [](const auto&) { return "HTTP/1.1 200 OK\r\n\r\n" + QByteArray(65 << 20, ' '); });
    AccountAPI patient(endless.configuration(), preferences);
    EXPECT_EQ(transportFailure(patient.me()), TransportError::Kind::tooLarge);

    // Destroying a client stops its requests.
    auto leaving = client();
    QCoro::Task<AccountSummary> left = leaving->me();
    leaving.reset();
    EXPECT_EQ(transportFailure(std::move(left)), TransportError::Kind::stopped);
}
