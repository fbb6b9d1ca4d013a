#pragma once

#include "service/Service.h"
#include "service/http/Server.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <httplib.h>
#include <nlohmann/json.hpp>

// A service in this process, used over HTTP. Its clock is `now`, which a test may set.
class TestService {
public:
    using Json = nlohmann::json;
    struct Reply {
        int status = 0;
        std::string body;
        httplib::Headers headers;

        Json json() const { return Json::parse(body, nullptr, false); }
        std::string error() const { return json().is_object() ? json().value("error", "") : ""; }
        std::string header(const char* name) const
        {
            const auto found = headers.find(name);
            return found == headers.end() ? "" : found->second;
        }
    };

    explicit TestService(const QString& host = QStringLiteral("127.0.0.1"),
                         ServiceAudience audience = ServiceAudience::ownUser)
        : m_service({.dataFolder = m_folder.path(),
                     .audience = audience,
                     .administrator = QStringLiteral("Jefa@Ejemplo.es"),
                     .copyProvider = [this] { return provider; },
                     .offeredProgram = [this] { return offered; },
                     .now = [this] { return now.load(); }}),
          m_server(m_service, host)
    {
        EXPECT_TRUE(m_server.start(0));
    }

    int port() const { return m_server.port(); }
    std::string address() const { return m_server.address().toStdString(); }
    Service& service() { return m_service; }
    QDir folder() const { return QDir(m_folder.path()); }

    Reply get(const std::string& path) { return kept(client().Get(path, headers())); }
    Reply post(const std::string& path, const Json& body)
    {
        return kept(client().Post(path, headers(), body.dump(), "application/json"));
    }
    Reply patch(const std::string& path, const Json& body)
    {
        return kept(client().Patch(path, headers(), body.dump(), "application/json"));
    }
    Reply sendForm(const std::string& path, const httplib::Params& fields)
    {
        return kept(client().Post(path, headers(), fields));
    }
    // The value of the field `name` in a page.
    static std::string field(const Reply& page, const std::string& name)
    {
        const std::string mark = "name=\"" + name + "\" value=\"";
        const size_t begin = page.body.find(mark);
        return begin == std::string::npos
                   ? ""
                   : page.body.substr(begin + mark.size(),
                                      page.body.find('"', begin + mark.size()) - begin -
                                          mark.size());
    }
    // Opens the page, fills in its form and sends it to `to`.
    Reply fill(const std::string& page, const std::string& to, httplib::Params fields)
    {
        fields.emplace("ficha", field(get(page), "ficha"));
        return sendForm(to, fields);
    }

    Reply signUp(const std::string& email = "ana@ejemplo.es")
    {
        return post("/api/auth/register", {{"email", email}, {"password", password}});
    }

    std::map<std::string, std::string> cookies;    // by name; received and sent as a browser does
    std::atomic<qint64> now = 1'800'000'000'000;
    CopyProvider provider;
    OfferedProgram offered;
    static constexpr const char* password = "una-contraseña";

private:
    httplib::Client client() const { return httplib::Client(address()); }
    httplib::Headers headers() const
    {
        std::string all;
        for (const auto& [name, value] : cookies)
            all.append(name).append("=").append(value).append("; ");
        return all.empty() ? httplib::Headers{} : httplib::Headers{{"Cookie", all}};
    }
    Reply kept(const httplib::Result& result)
    {
        if (!result)
            return {};
        const auto [begin, end] = result->headers.equal_range("Set-Cookie");
        for (auto one = begin; one != end; ++one) {
            const std::string pair = one->second.substr(0, one->second.find(';'));
            const size_t equals = pair.find('=');
            cookies[pair.substr(0, equals)] = pair.substr(equals + 1);
        }
        return {result->status, result->body, result->headers};
    }

    QTemporaryDir m_folder;
    Service m_service;
    Server m_server;
};
