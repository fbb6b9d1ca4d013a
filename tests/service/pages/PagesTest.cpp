#include "tests/service/TestService.h"

#include "service/Html.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using Json = TestService::Json;

namespace {

std::string linkIn(const std::string& text, const std::string& begin, const char* end = "\"")
{
    const size_t from = text.find(begin);
    return from == std::string::npos ? "" : text.substr(from, text.find(end, from) - from);
}

}    // namespace

TEST(Pages, textsStayTexts)
{
    EXPECT_EQ(html::tag("p", html::text(u"<b>\"&'"_s), {{"title", u"\"><x"_s}}).code,
              u"<p title=\"&quot;&gt;&lt;x\">&lt;b&gt;&quot;&amp;&#39;</p>"_s);
    TestService service;
    service.signUp();
    service.patch("/api/auth/profile", {{"fullName", "<script>alert(1)</script>"}});
    const Json start =
        service.post("/api/stripe/checkout", {{"credits", 1000}, {"client", "x"}}).json();
    const std::string page = start["url"].get<std::string>().substr(service.address().size());
    service.fill(page, page, {{"accion", "pagar"}});
    const Json bought = service.get("/api/account/purchases").json()["purchases"][0];
    const auto invoice =
        service.get(bought["invoiceURL"].get<std::string>().substr(service.address().size()));
    EXPECT_NE(invoice.body.find("&lt;script&gt;alert(1)"), std::string::npos);
    EXPECT_EQ(invoice.body.find("<script"), std::string::npos);
    EXPECT_EQ(invoice.header("Content-Security-Policy").find("default-src 'none'"), 0u);
    EXPECT_EQ(invoice.header("Cache-Control"), "no-store");
}

TEST(Pages, onlyOurOwnFormsAreTaken)
{
    TestService service;
    service.signUp();
    const Json start =
        service.post("/api/stripe/checkout", {{"credits", 1000}, {"client", "x"}}).json();
    const std::string page = start["url"].get<std::string>().substr(service.address().size());
    const auto balance = [&] { return service.get("/api/auth/me").json()["balance"].get<int>(); };

    EXPECT_EQ(service.sendForm(page, {{"accion", "pagar"}}).status, 403) << "no token";
    const std::string other = TestService::field(service.get("/api/auth/oauth/google"), "ficha");
    EXPECT_EQ(service.sendForm(page, {{"accion", "pagar"}, {"ficha", other}}).status, 403)
        << "the token of another form";
    const std::string token = TestService::field(service.get(page), "ficha");
    const std::string kept = std::exchange(service.cookies["moltiva_form"], std::string(43, 'a'));
    EXPECT_EQ(service.sendForm(page, {{"accion", "pagar"}, {"ficha", token}}).status, 403)
        << "another browser";
    service.cookies["moltiva_form"] = kept;
    EXPECT_EQ(balance(), 10'000);
    EXPECT_EQ(service.sendForm(page, {{"accion", "cancelar"}, {"ficha", token}}).status, 303);
    EXPECT_EQ(service.sendForm(page, {{"accion", "pagar"}, {"ficha", token}}).status, 303);
    EXPECT_EQ(balance(), 10'000) << "what was cancelled cannot be paid";
}

TEST(Pages, passwordIsRecoveredOnceThroughTheMail)
{
    TestService service;
    service.signUp();
    const auto request = "/api/auth/password-reset/request";
    for (const char* email : {"nadie@ejemplo.es", "no es un email"})
        EXPECT_EQ(service.post(request, {{"email", email}}).status, 200);
    EXPECT_EQ(service.get("/correo").body.find(".eml"), std::string::npos);
    EXPECT_EQ(service.post(request, {{"email", "ana@ejemplo.es"}}).status, 200);
    const auto mail = service.get(linkIn(service.get("/correo").body, "/correo/"));
    const std::string link = linkIn(mail.body, "/restablecer?token=");
    ASSERT_FALSE(link.empty());
    service.now += 1000;
    EXPECT_EQ(service.post(request, {{"email", "ana@ejemplo.es"}}).status, 200);
    const std::string other = linkIn(
        service.get(linkIn(service.get("/correo").body, "/correo/")).body, "/restablecer?token=");
    EXPECT_EQ(service.get(other).status, 200);
    const std::string token = link.substr(link.find('=') + 1);

    const auto fill = [&](const char* first, const char* second) {
        return service
            .fill(link, "/restablecer", {{"token", token}, {"nueva", first}, {"repetida", second}})
            .status;
    };
    EXPECT_EQ(fill("corta", "corta"), 400);
    EXPECT_EQ(fill("nueva-clave", "otra-clave"), 400);
    EXPECT_EQ(fill("nueva-clave", "nueva-clave"), 200);
    EXPECT_EQ(service.get(link).status, 404) << "used";
    EXPECT_EQ(service.get(other).status, 404) << "asked for as well, before";
    EXPECT_EQ(service.get("/api/auth/me").status, 401) << "all sessions end";
    EXPECT_EQ(
        service.post("/api/auth/login", {{"email", "ana@ejemplo.es"}, {"password", "nueva-clave"}})
            .status,
        200);

    service.post(request, {{"email", "ana@ejemplo.es"}});
    service.now += 61 * 60 * 1000;
    const auto late = service.get(linkIn(service.get("/correo").body, "/correo/"));
    EXPECT_EQ(service.get(linkIn(late.body, "/restablecer?token=")).status, 404) << "too late";
    for (int i = 0; i < 9; ++i)
        service.post(request, {{"email", "ana@ejemplo.es"}});
    EXPECT_EQ(QDir(service.folder().filePath(u"correo"_s)).entryList({u"*.eml"_s}).size(), 8)
        << "five within a quarter of an hour";
}

TEST(Pages, googleEndsInALinkThatSignsInOnceAndSoon)
{
    TestService service;
    const auto enter = [&](const char* email, const char* action) {
        return service
            .fill("/api/auth/oauth/google?client=moltiva-macos", "/acceso",
                  {{"email", email}, {"accion", action}})
            .body;
    };
    const auto tokenIn = [](const std::string& page) {
        return Json{{"token", linkIn(page, "moltiva://auth?token=").substr(21)}};
    };
    const auto exchange = "/api/auth/desktop/exchange";
    EXPECT_NE(enter("", "cancelar").find("moltiva://auth?error=access_denied"), std::string::npos);
    EXPECT_EQ(enter("mal", "entrar").find("moltiva://"), std::string::npos);
    const Json token = tokenIn(enter("ana@ejemplo.es", "entrar"));
    const auto made = service.post(exchange, token);
    EXPECT_EQ(made.json()["profile"]["email"], "ana@ejemplo.es");
    EXPECT_EQ(service.post(exchange, token).error(), "invalid_credentials") << "used";
    const std::string before = service.cookies["tallerio_session"];
    const auto again = service.post(exchange, tokenIn(enter("ANA@ejemplo.es", "entrar")));
    const std::string after = std::exchange(service.cookies["tallerio_session"], before);
    EXPECT_EQ(service.get("/api/auth/me").status, 401) << "the session that it replaced";
    service.cookies["tallerio_session"] = after;
    EXPECT_EQ(service.get("/api/auth/me").status, 200);
    EXPECT_EQ(again.json()["profile"]["id"], made.json()["profile"]["id"]);
    const Json old = tokenIn(enter("ana@ejemplo.es", "entrar"));
    service.now += 5 * 60 * 1000;
    EXPECT_EQ(service.post(exchange, old).error(), "invalid_credentials") << "too late";
    EXPECT_EQ(
        service.post("/api/auth/login", {{"email", "ana@ejemplo.es"}, {"password", ""}}).error(),
        "invalid_credentials")
        << "an account without password";
}
