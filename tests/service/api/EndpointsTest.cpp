#include "tests/service/TestService.h"

#include "model/GeneratedCopy.h"
#include "service/Routes.h"
#include "service/store/Accounts.h"
#include "service/store/TemplateCatalogue.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QImage>

#include <gtest/gtest.h>

#include <future>

using namespace Qt::StringLiterals;
using Json = TestService::Json;

namespace {

std::string picture(const char* format, QSize size = {40, 50})
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return buffer.data().toBase64().toStdString();
}

Json post(const std::string& network, const std::string& id)
{
    return {
        {"network", network},
        {"caption", "Hola"},
        {"requestId", id},
        {"placement", "feed"},
        {"images",
         {{{"fileName", "a.png"}, {"mimeType", "image/png"}, {"dataBase64", picture("png")}},
          {{"fileName", "b.jpg"}, {"mimeType", "image/jpeg"}, {"dataBase64", picture("jpeg")}}}}};
}

Json copyOrder(const std::string& id)
{
    return {{"requestId", id},
            {"objective", "Rebajas"},
            {"format", "square"},
            {"mimeType", "image/png"},
            {"imageBase64", picture("png")}};
}

struct Case {
    const char* path;
    Json body;
    int status;
    const char* error;
};

void expectRefused(TestService& service, const std::vector<Case>& cases)
{
    for (const Case& one : cases) {
        const auto reply = service.post(one.path, one.body);
        EXPECT_EQ(reply.status, one.status) << one.path << " " << one.body.dump().substr(0, 200);
        EXPECT_EQ(reply.error(), one.error) << one.path << " " << one.body.dump().substr(0, 200);
    }
}

constexpr auto reserve = "/api/credits/social-copy/reserve";
constexpr auto publish = "/api/social/publish";
constexpr auto upload = "/api/publicaciones/templates/update";

}    // namespace

TEST(Endpoints, withoutASessionOnlySigningInIsOpen)
{
    TestService service;
    for (const char* path :
         {reserve, "/api/credits/social-copy/refund", "/api/stripe/checkout", "/api/stripe/confirm",
          "/api/publicaciones/generate", upload, "/api/publicaciones/templates/delete",
          "/api/social/connect-token", publish, "/api/auth/password"})
        EXPECT_EQ(service.post(path, Json::object()).error(), "unauthorized") << path;
    for (const char* path :
         {"/api/auth/me", "/api/account/purchases", "/api/social/status",
          "/api/account/purchases/link?purchaseId=1", "/api/publicaciones/templates",
          "/api/publicaciones/templates/file?name=a.json"})
        EXPECT_EQ(service.get(path).status, 401) << path;
    EXPECT_EQ(service.patch("/api/auth/profile", Json::object()).status, 401);
    EXPECT_EQ(service.post("/api/auth/logout", Json::object()).status, 200);
    const Json config = service.get("/api/publicaciones/config").json();
    EXPECT_TRUE(config["enabled"] == true && config["costCredits"] == 10);
    EXPECT_FALSE(config.contains("latestLinuxVersion") || config.contains("linuxDownloadURL"));
    service.offered = {u"2.0"_s, u"https://e.es/m.deb"_s};
    const Json offering = service.get("/api/publicaciones/config").json();
    EXPECT_EQ(offering["latestLinuxVersion"], "2.0");
    EXPECT_EQ(offering["linuxDownloadURL"], "https://e.es/m.deb");
}

TEST(Endpoints, accountFromSignUpToSignOut)
{
    TestService service;
    const auto made = service.signUp(" Ana@Ejemplo.ES ");
    EXPECT_EQ(made.json()["balance"], 10'000);
    EXPECT_EQ(made.json()["profile"]["email"], "ana@ejemplo.es");
    EXPECT_EQ(made.json()["profile"]["isAdmin"], false);
    const std::string cookie = made.header("Set-Cookie");
    EXPECT_NE(cookie.find("; Path=/; HttpOnly; SameSite=Lax"), std::string::npos) << cookie;
    EXPECT_EQ(service.patch("/api/auth/profile", {{"fullName", "  Ana Ruiz "}})
                  .json()["profile"]["fullName"],
              "Ana Ruiz");
    EXPECT_EQ(service.patch("/api/auth/profile", {{"fullName", std::string(121, 'a')}}).error(),
              "invalid_profile");

    const std::string first = service.cookies["tallerio_session"];
    const std::string email = "ana@ejemplo.es", word = TestService::password;
    const Json credentials{{"email", email}, {"password", word}};
    service.cookies.clear();
    EXPECT_EQ(service.post("/api/auth/login", credentials).status, 200);
    const std::string replaced = service.cookies["tallerio_session"];
    EXPECT_EQ(service.post("/api/auth/login", credentials).status, 200);
    const std::string second = service.cookies["tallerio_session"];
    service.cookies["tallerio_session"] = replaced;
    EXPECT_EQ(service.get("/api/auth/me").status, 401) << "the session that signed in again ends";
    service.cookies["tallerio_session"] = first;
    EXPECT_EQ(service.get("/api/auth/me").status, 200) << "and no other";
    service.cookies["tallerio_session"] = second;
    const auto change = [](const char* current, const char* next, const char* again) {
        return Json{
            {"currentPassword", current}, {"newPassword", next}, {"confirmNewPassword", again}};
    };
    const auto password = "/api/auth/password";
    expectRefused(
        service,
        {{"/api/auth/register", {{"email", email}, {"password", word}}, 409, "email_exists"},
         {"/api/auth/register",
          {{"email", "b@e.es"}, {"password", "corta"}},
          400,
          "invalid_password"},
         {"/api/auth/register",
          {{"email", "b@@e"}, {"password", word}},
          400,
          "invalid_credentials"},
         {"/api/auth/login", {{"email", email}, {"password", "otra"}}, 400, "invalid_credentials"},
         {"/api/auth/login",
          {{"email", "no@e.es"}, {"password", word}},
          400,
          "invalid_credentials"},
         {"/api/auth/login", {{"email", email}}, 400, "invalid_request"},
         {password, change("otra", "nueva-clave", "nueva-clave"), 400, "invalid_credentials"},
         {password, change(word.c_str(), "nueva-clave", "distinta"), 400, "invalid_password"}});
    EXPECT_EQ(service.post(password, change(word.c_str(), "nueva-clave", "nueva-clave")).status,
              200);
    EXPECT_EQ(service.get("/api/auth/me").status, 200) << "the session that changed it goes on";
    service.cookies["tallerio_session"] = first;
    EXPECT_EQ(service.get("/api/auth/me").status, 401) << "the others end";

    service.cookies["tallerio_session"] = second;
    service.post("/api/auth/logout", Json::object());
    service.cookies["tallerio_session"] = second;
    EXPECT_EQ(service.get("/api/auth/me").error(), "unauthorized") << "signing out ends it here";
}

TEST(Endpoints, sessionsEndUnusedAndSignInsAreCounted)
{
    TestService service;
    constexpr qint64 day = 24 * 60 * 60 * 1000LL;
    service.signUp();
    for (int i = 0; i < 3; ++i) {
        service.now += 20 * day;
        EXPECT_EQ(service.get("/api/auth/me").status, 200) << "used now and then";
    }
    service.now += 31 * day;
    EXPECT_EQ(service.get("/api/auth/me").status, 401);

    const Json wrong{{"email", "ana@ejemplo.es"}, {"password", "no"}};
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(service.post("/api/auth/login", wrong).status, 400);
    const Json right{{"email", "ana@ejemplo.es"}, {"password", TestService::password}};
    EXPECT_EQ(service.post("/api/auth/login", right).error(), "too_many_attempts");
    service.now += 11 * 60 * 1000;
    EXPECT_EQ(service.post("/api/auth/login", right).status, 200);
}

TEST(Endpoints, nothingSecretIsKeptReadable)
{
    TestService service;
    service.signUp();
    service.service().database().checkpoint();
    QFile file(service.folder().filePath(u"servicio.sqlite"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray all = file.readAll();
    EXPECT_FALSE(all.contains(TestService::password));
    EXPECT_FALSE(all.contains(service.cookies["tallerio_session"].c_str()));
    EXPECT_TRUE(all.contains("$argon2id$"));
    EXPECT_EQ(file.permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
}

TEST(Endpoints, creditsAndPurchases)
{
    TestService service;
    service.signUp("otra@ejemplo.es");
    const auto foreign =
        service.post("/api/stripe/checkout", {{"credits", 1000}, {"client", "x"}}).json();
    service.signUp();
    const Json charge{{"cost", 10}, {"requestId", "a"}};
    EXPECT_EQ(service.post(reserve, charge).json(),
              Json({{"balance", 9990}, {"cost", 10}, {"ok", true}}));
    EXPECT_EQ(service.post("/api/credits/social-copy/refund", charge).json()["balance"], 10'000);

    const auto start =
        service.post("/api/stripe/checkout", {{"credits", 20'000}, {"client", "x"}}).json();
    const auto confirm = "/api/stripe/confirm";
    const Json session{{"sessionId", start["sessionId"]}};
    expectRefused(
        service,
        {{reserve, {{"cost", 20'000}, {"requestId", "b"}}, 402, "insufficient_credits"},
         {reserve, {{"cost", 1.5}, {"requestId", "b"}}, 400, "invalid_credit_request"},
         {reserve, {{"cost", 4294967306}, {"requestId", "b"}}, 400, "invalid_credit_request"},
         {"/api/credits/social-copy/refund",
          {{"cost", 1}, {"requestId", "z"}},
          409,
          "credit_not_reserved"},
         {"/api/stripe/checkout",
          {{"credits", 1500}, {"client", "x"}},
          400,
          "invalid_credit_amount"},
         {"/api/stripe/checkout",
          {{"credits", 1'001'000}, {"client", "x"}},
          400,
          "invalid_credit_amount"},
         {confirm, session, 402, "checkout_not_paid"},
         {confirm, {{"sessionId", "nada"}}, 404, "checkout_not_recorded"},
         {confirm, {{"sessionId", foreign["sessionId"]}}, 404, "checkout_not_recorded"}});

    const std::string page = start["url"].get<std::string>().substr(service.address().size());
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(service.fill(page, page, {{"accion", "pagar"}}).status, i == 0 ? 303 : 403)
            << "a paid page has no form any more";
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(service.post(confirm, session).json()["balance"], 30'000);
    const Json bought = service.get("/api/account/purchases").json()["purchases"];
    ASSERT_EQ(bought.size(), 1u);
    EXPECT_EQ(bought[0]["orderNumber"], "MOL-2027-000001");
    EXPECT_EQ(bought[0]["amountCents"], 2000);
    EXPECT_EQ(bought[0]["detail"], "20000 créditos");
    const auto link =
        "/api/account/purchases/link?purchaseId=" + bought[0]["id"].get<std::string>();
    EXPECT_EQ(service.get(link).json()["url"], bought[0]["invoiceURL"]);
    service.signUp("tercera@ejemplo.es");
    EXPECT_EQ(service.get(link).error(), "invalid_purchase");
}

TEST(Endpoints, copyComesFromTheProviderForReservedCreditsOnly)
{
    TestService service;
    service.signUp();
    const auto generate = "/api/publicaciones/generate";
    EXPECT_EQ(service.post(generate, copyOrder("a")).error(), "credit_not_reserved");
    service.post(reserve, {{"cost", 9}, {"requestId", "cheap"}});
    EXPECT_EQ(service.post(generate, copyOrder("cheap")).error(), "credit_not_reserved");
    service.post(reserve, {{"cost", 10}, {"requestId", "a"}});
    const auto changed = [](const char* key, const Json& value) {
        Json order = copyOrder("a");
        order[key] = value;
        return order;
    };
    expectRefused(service,
                  {{generate, changed("mimeType", "image/jpeg"), 400, "invalid_image"},
                   {generate, changed("imageBase64", "AAAA"), 400, "invalid_image"},
                   {generate, changed("imageBase64", "!"), 400, "invalid_image"},
                   {generate, changed("format", "Cuadrado"), 400, "invalid_credit_request"},
                   {generate, copyOrder("a"), 503, "provider_key_missing"}});
    service.provider.address = u"http://127.0.0.1:1/v1"_s;
    EXPECT_EQ(service.post(generate, copyOrder("a")).error(), "model_not_configured");
    service.provider.model = u"modelo"_s;
    EXPECT_EQ(service.post(generate, copyOrder("a")).error(), "provider_request_failed");
    service.provider.address = u"http://192.0.2.1/v1"_s;
    service.provider.key = u"llave"_s;
    EXPECT_EQ(service.post(generate, copyOrder("a")).error(), "provider_not_supported")
        << "a key in the clear";

    httplib::Server provider;
    std::string answer = "nada";
    Json asked;
    std::promise<void> arrived;
    provider.Post("/mudo/chat/completions", [&](const auto&, auto&) {
        arrived.set_value();
        while (!service.service().isEnding())
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        std::this_thread::sleep_for(std::chrono::seconds(3));
    });
    provider.Post("/v1/chat/completions", [&](const auto& request, auto& reply) {
        asked = Json::parse(request.body);
        asked["key"] = request.get_header_value("Authorization");
        reply.set_content(Json{{"choices", {{{"message", {{"content", answer}}}}}}}.dump(),
                          "application/json");
    });
    const int port = provider.bind_to_any_port("127.0.0.1");
    std::thread serving([&] { provider.listen_after_bind(); });
    service.provider = {u"http://127.0.0.1:%1/v1/"_s.arg(port), u"llave"_s, u"modelo"_s};
    EXPECT_EQ(service.post(generate, copyOrder("a")).error(), "provider_invalid_response");
    answer = "Aquí está:\n```json\n{\"title\":\"T\",\"subtitle\":\"S\",\"tagline\":\"P\","
             "\"callToAction\":\"Compra ya\",\"publicationCaption\":\"C\"}\n```";
    EXPECT_EQ(service.post(generate, changed("format", "Post cuadrado")).json()["copy"]["title"],
              "T");
    answer = "otra cosa";
    EXPECT_EQ(service.post(generate, copyOrder("a")).json()["copy"]["title"], "T")
        << "asked again, it is what was made";
    EXPECT_EQ(asked["key"], "Bearer llave");
    EXPECT_EQ(asked["messages"][0]["content"][1]["image_url"]["url"],
              "data:image/png;base64," + picture("png"));

    service.provider.address = u"http://127.0.0.1:%1/mudo"_s.arg(port);
    service.post(reserve, {{"cost", 10}, {"requestId", "b"}});
    ServiceRequest request{
        .method = ServiceMethod::post,
        .path = QString::fromLatin1(generate),
        .base = {},
        .query = {},
        .form = {},
        .cookies = {{"tallerio_session", service.cookies["tallerio_session"].c_str()}},
        .body = QByteArray::fromStdString(copyOrder("b").dump())};
    std::atomic_bool hasLetGo = false;
    request.releaseBody = [&] { hasLetGo = true; };
    auto waiting =
        std::async(std::launch::async, [&] { return ::answer(service.service(), request).status; });
    EXPECT_EQ(arrived.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready);
    EXPECT_TRUE(hasLetGo) << "others must not wait for the provider";
    service.service().isEnding() = true;
    EXPECT_EQ(waiting.wait_for(std::chrono::seconds(2)), std::future_status::ready);
    EXPECT_EQ(waiting.get(), 502);
    provider.stop();
    serving.join();
}

TEST(Endpoints, postsAreCheckedAndPublishedOnce)
{
    TestService service;
    service.signUp();
    const auto changed = [](const char* key, const Json& value) {
        Json request = post("instagram", "a");
        request[key] = value;
        return request;
    };
    expectRefused(
        service,
        {{publish, post("instagram", "a"), 409, "social_account_not_connected"},
         {publish, post("myspace", "a"), 400, "invalid_social_network"},
         {"/api/social/connect-token", {{"network", "x"}}, 400, "invalid_social_network"}});
    const auto token = service.post("/api/social/connect-token", {{"network", "instagram"}}).json();
    const std::string page = token["url"].get<std::string>().substr(service.address().size());
    EXPECT_EQ(service.fill(page, page, {{"accion", "conectar"}, {"nombre", "Sol"}}).status, 200);
    EXPECT_EQ(service.get(page).status, 404) << "an invitation is used once";
    EXPECT_EQ(service.get("/api/social/connect?network=x").header("Content-Type"),
              "text/html; charset=utf-8");
    const auto connect = [&](const char* network, const char* action, const char* word) {
        return service
            .fill(std::string("/api/social/connect?client=x&network=") + network, "/conexion",
                  {{"red", network},
                   {"accion", action},
                   {"email", "ana@ejemplo.es"},
                   {"clave", word},
                   {"nombre", "Luna"}})
            .status;
    };
    EXPECT_EQ(connect("facebook", "conectar", "otra"), 400);
    EXPECT_EQ(connect("facebook", "cancelar", TestService::password), 200);
    EXPECT_EQ(service.post(publish, post("facebook", "f")).error(), "social_account_not_connected");
    EXPECT_EQ(connect("facebook", "conectar", TestService::password), 200);
    const Json networks = service.get("/api/social/status").json()["networks"];
    EXPECT_TRUE(networks[0]["displayName"] == "Sol" && networks[1]["displayName"] == "Luna" &&
                networks[2]["isConnected"] == false);

    Json images = post("instagram", "a")["images"];
    const auto with = [&](const std::string& type, const std::string& data) {
        Json list = images;
        list.push_back({{"fileName", "c"}, {"mimeType", type}, {"dataBase64", data}});
        return list;
    };
    Json eleven = Json::array();
    for (int i = 0; i < 11; ++i)
        eleven.push_back(images[0]);
    Json storyOnFacebook = post("facebook", "s"), tenOnLinkedIn = post("linkedin", "l");
    storyOnFacebook["placement"] = "story";
    tenOnLinkedIn["images"] = eleven;
    tenOnLinkedIn["images"].erase(0);
    const auto wrongRequest = "invalid_social_publish_request";
    const auto wrongImage = "invalid_social_publish_image";
    expectRefused(
        service, {{publish, changed("images", Json::array()), 400, wrongRequest},
                  {publish, changed("images", eleven), 400, wrongRequest},
                  {publish, changed("placement", "reel"), 400, wrongRequest},
                  {publish, storyOnFacebook, 400, wrongRequest},
                  {publish, tenOnLinkedIn, 400, wrongRequest},
                  {publish, changed("requestId", ""), 400, wrongRequest},
                  {publish, changed("caption", std::string(63'207, 'a')), 400, wrongRequest},
                  {publish, changed("images", with("image/png", "no es base64")), 400, wrongImage},
                  {publish, changed("images", with("image/jpeg", picture("png"))), 400, wrongImage},
                  {publish, changed("images", with("image/png", picture("png").substr(0, 60))), 400,
                   wrongImage},
                  {publish, changed("images", with("image/png", picture("png", {4100, 4000}))), 400,
                   wrongImage}});
    const Json made = service.post(publish, post("instagram", "a")).json();
    EXPECT_EQ(service.post(publish, post("instagram", "a")).json(), made);
    const QDir posts(service.folder().filePath(u"publicaciones"_s));
    EXPECT_TRUE(posts.mkdir(QString(43, u'a'))) << "as a crash leaves one";
    const Service restarted(
        {.dataFolder = service.folder().path(), .administrator = {}, .now = {}});
    EXPECT_EQ(posts.entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 1);
    const std::string shown = made["url"].get<std::string>().substr(service.address().size());
    EXPECT_EQ(service.get(shown + "/2").header("Content-Type"), "image/jpeg");
    for (const char* path : {"/0", "/3", "/-1", "/x", "/..%2f1"})
        EXPECT_EQ(service.get(shown + path).status, 404) << path;
}

TEST(Endpoints, templatesAreTheAdministrators)
{
    TestService service;
    const auto file = [](const char* name, const char* text) {
        return Json{{"fileName", name},
                    {"templateJSONBase64", QByteArray(text).toBase64().toStdString()}};
    };
    service.signUp();
    EXPECT_EQ(service.post(upload, file("a.json", "{}")).error(), "admin_required");
    const auto isAdministrator = [&] {
        return service.get("/api/auth/me").json()["profile"]["isAdmin"] == true;
    };
    service.signUp("jefa@ejemplo.es");
    EXPECT_TRUE(isAdministrator());
    TestService shared(u"127.0.0.1"_s, ServiceAudience::everybody);
    shared.signUp("jefa@ejemplo.es");
    EXPECT_EQ(shared.post(upload, file("a.json", "{}")).error(), "admin_required")
        << "whoever comes first";
    {
        Transaction transaction(shared.service().database());
        nameAdministrator(transaction, *accountWithEmail(transaction, u"jefa@ejemplo.es"_s));
        transaction.commit();
    }
    EXPECT_EQ(shared.post(upload, file("a.json", "{}")).status, 200);
    const char* wrong = "invalid_template";
    expectRefused(
        service,
        {{upload, file("../a.json", "{}"), 400, wrong},
         {upload, file(".a.json", "{}"), 400, wrong},
         {upload, file("a.txt", "{}"), 400, wrong},
         {upload, file("a.json", "[]"), 400, wrong},
         {upload, file("a.json", "{"), 400, wrong},
         {"/api/publicaciones/templates/delete", {{"fileName", "../servicio.json"}}, 400, wrong}});
    EXPECT_EQ(service.post(upload, file("a.json", "{\"a\":1}")).status, 200);
    Json renamed = file("b.json", "{}");
    for (const char* outside : {"../servicio.sqlite", "../x.json", "/tmp/x.json"}) {
        renamed["oldFileName"] = outside;
        EXPECT_EQ(service.post(upload, renamed).error(), wrong) << outside;
    }
    renamed["oldFileName"] = "a.json";
    EXPECT_EQ(service.post(upload, renamed).status, 200);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(
            service.post("/api/publicaciones/templates/delete", {{"fileName", "b.json"}}).status,
            200);
}

TEST(Endpoints, theCatalogueListsWhatIsSharedAndKeepsTenVersions)
{
    TestService service;
    service.signUp("jefa@ejemplo.es");
    const auto share = [&](const std::string& name, const std::string& text,
                           const std::string& oldName = {}) {
        service.now += 1000;
        Json body{{"fileName", name},
                  {"templateJSONBase64", QByteArray::fromStdString(text).toBase64().toStdString()}};
        if (!oldName.empty())
            body["oldFileName"] = oldName;
        return service.post(upload, body).status;
    };
    const auto withdraw = [&](const char* name) {
        return service.post("/api/publicaciones/templates/delete", {{"fileName", name}}).status;
    };
    const auto manifest = [&](const std::string& since = {}) {
        return service.get("/api/publicaciones/templates?since=" + since).json();
    };
    const auto file = [&](const std::string& name, const char* more = "") {
        const auto reply = service.get("/api/publicaciones/templates/file?name=" + name + more);
        return reply.status != 200
                   ? reply.error()
                   : QByteArray::fromBase64(
                         QByteArray::fromStdString(reply.json()["jsonBase64"].get<std::string>()))
                         .toStdString();
    };
    const auto previous = [&](const std::string& name) { return file(name, "&version=previous"); };

    const Json empty = manifest();
    EXPECT_TRUE(empty["templates"].empty() && empty["deleted"].empty()) << empty;
    share("a.json", R"({"n":1})");
    share("b.json", "{}");
    const Json two = manifest(empty["version"].get<std::string>());
    EXPECT_EQ(two["templates"][0],
              Json({{"fileName", "a.json"},
                    {"sha256", QCryptographicHash::hash(R"({"n":1})", QCryptographicHash::Sha256)
                                   .toHex()
                                   .toStdString()},
                    {"bytes", 7},
                    {"updatedAt", "2027-01-15T08:00:01.000Z"},
                    {"versions", 0}}));
    const std::string version = two["version"].get<std::string>();
    EXPECT_EQ(manifest(version), Json({{"version", version}})) << "nothing is newer";

    share("c.json", R"({"c":1})", "b.json");
    EXPECT_EQ(manifest(version)["deleted"], Json({"b.json"})) << "renamed";
    EXPECT_EQ(file("b.json"), "template_not_found");
    EXPECT_EQ(previous("b.json"), "{}");
    share("b.json", "{}");
    EXPECT_TRUE(manifest()["deleted"].empty()) << "an upload leaves the list of deletions";

    for (int n = 2; n <= 11; ++n)
        share("a.json", R"({"n":)" + std::to_string(n) + "}");
    EXPECT_EQ(manifest()["templates"][0]["versions"], 9);
    EXPECT_EQ(file("a.json"), R"({"n":11})");
    EXPECT_EQ(previous("a.json"), R"({"n":10})");
    for (int n = 10; n >= 2; --n) {
        const std::string earlier = previous("a.json");
        EXPECT_EQ(earlier, R"({"n":)" + std::to_string(n) + "}");
        share("a.json", earlier);
    }
    EXPECT_EQ(manifest()["templates"][0]["versions"], 9) << "what is kept is no new version";
    EXPECT_EQ(previous("a.json"), R"({"n":11})") << "the first one is gone; it begins again";

    EXPECT_EQ(withdraw("a.json"), 200);
    EXPECT_EQ(withdraw("z.json"), 200) << "a design that comes with the program";
    EXPECT_EQ(manifest()["deleted"], Json({"a.json", "z.json"}));
    EXPECT_EQ(previous("a.json"), R"({"n":2})") << "the one that was withdrawn";
    EXPECT_EQ(previous("z.json"), "template_not_found");
    EXPECT_EQ(file("../servicio.sqlite"), "template_not_found");
    share("a.json", previous("a.json"));
    EXPECT_EQ(manifest()["deleted"], Json({"z.json"}));

    {
        Transaction transaction(service.service().database());
        const char* numbers = "WITH RECURSIVE n(i) AS (VALUES (1004) UNION ALL"
                              " SELECT i + 1 FROM n WHERE i < 2999) ";
        transaction.run(
            (QByteArray(numbers) + "INSERT INTO template SELECT 'x' || i, i, 0, 0 FROM n")
                .constData());
        transaction.run((QByteArray(numbers) +
                         "INSERT INTO template_version SELECT i, 'x' || i, '', x'7b7d' FROM n")
                            .constData());
        transaction.commit();
    }
    EXPECT_EQ(share("full.json", "{}"), 200);
    EXPECT_EQ(share("more.json", "{}"), 409);
    EXPECT_EQ(file("more.json"), "template_not_found") << "what is refused changes nothing";
}

TEST(Endpoints, templatesStoredAsFilesAreTakenIntoTheCatalogue)
{
    const QTemporaryDir folder;
    const QDir files(folder.filePath(u"plantillas"_s));
    files.mkpath(u"."_s);
    const auto write = [&](const QString& name, const QByteArray& text) {
        QFile file(files.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
    };
    write(u"a.json"_s, "{}");
    write(u"damaged.json"_s, "{");
    const Service service({.dataFolder = folder.path(), .now = {}});
    Service again({.dataFolder = folder.path(), .now = {}});
    Transaction transaction(again.database());
    EXPECT_EQ(templateManifest(transaction, {}).templates->size(), 1);
    EXPECT_EQ(templateFile(transaction, u"a.json"_s, TemplateVersion::current).jsonBase64, "{}");
    EXPECT_EQ(files.entryList(QDir::Files), QStringList{u"damaged.json"_s});
}
