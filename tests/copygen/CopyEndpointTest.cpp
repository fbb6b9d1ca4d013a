#include "copygen/CopyEndpoint.h"

#include "copygen/LocalAIService.h"
#include "tests/account/Awaited.h"
#include "tests/account/ScriptedServer.h"
#include "tests/copygen/StandInEngine.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

QByteArray chatReply(const QByteArray& content)
{
    const QJsonObject message{{u"content"_s, QString::fromUtf8(content)}};
    const QJsonObject choice{{u"message"_s, message}};
    return QJsonDocument(QJsonObject{{u"choices"_s, QJsonArray{choice}}}).toJson();
}

const QByteArray sold =
    R"({"title": "Luz", "subtitle": "s", "tagline": "g", "callToAction": "Ven",)"
    R"( "publicationCaption": "c"})";

CopyEndpoint endpointOf(const ScriptedServer& server)
{
    return {QUrl(server.url().toString() + u"/v1/chat/completions"_s), u"ojo-2b"_s, u"clave"_s, {}};
}

GeneratedCopy asked(LocalAIService& service, const QString& photo, std::stop_token stop = {})
{
    const QString purpose = u"vender<turn|> más"_s;
    return awaited(service.analyze(QUrl::fromLocalFile(photo), purpose, SocialFormat::square,
                                   LocalAIEngine::gemma4E2B, AnalysisMode::gemmaOnly,
                                   std::move(stop)));
}

QJsonObject bodyOf(const ScriptedServer::Request& request)
{
    return QJsonDocument::fromJson(request.body).object();
}

}    // namespace

TEST(CopyEndpoint, IsAskedAsTheChatProtocolHasIt)
{
    ScriptedServer server([](const auto&) { return ScriptedServer::reply(200, chatReply(sold)); });
    const StandInEngine files;
    LocalAIService service(configuredProfile(endpointOf(server)));
    const QString photo = files.photo({3072, 100});
    const GeneratedCopy copy = asked(service, photo);
    EXPECT_EQ(copy.title, u"Luz"_s);
    EXPECT_EQ(copy.imageNotes, u"Analizado con ojo-2b local."_s);
    asked(service, photo);
    ASSERT_EQ(server.requests.size(), 2);
    const auto& request = server.requests[0];
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.target, "/v1/chat/completions");
    EXPECT_EQ(request.header("Authorization"), "Bearer clave");
    EXPECT_EQ(request.header("Content-Type"), "application/json");

    const QJsonObject body = bodyOf(request), again = bodyOf(server.requests[1]);
    EXPECT_EQ(body[u"model"_s], u"ojo-2b"_s);
    EXPECT_EQ(body[u"max_tokens"_s], 220);
    EXPECT_EQ(body[u"temperature"_s], 0);
    EXPECT_FALSE(body.contains(u"seed"_s));
    EXPECT_EQ(again[u"temperature"_s], 0.7);
    EXPECT_TRUE(again.contains(u"seed"_s));
    const QJsonObject schema = body[u"response_format"_s][u"json_schema"_s][u"schema"_s].toObject();
    EXPECT_EQ(schema[u"properties"_s][u"tagline"_s][u"maxLength"_s], 220);
    const QJsonArray content = body[u"messages"_s][0][u"content"_s].toArray();
    const QString prompt = content[0][u"text"_s].toString();
    EXPECT_TRUE(prompt.contains(u"Objetivo estratégico: vender"_s));
    EXPECT_FALSE(prompt.contains(u"<turn|>"_s));
    const QByteArray image = content[1][u"image_url"_s][u"url"_s].toString().toLatin1();
    ASSERT_TRUE(image.startsWith("data:image/jpeg;base64,"));
    const QImage shown =
        QImage::fromData(QByteArray::fromBase64(image.mid(image.indexOf(',') + 1)));
    EXPECT_EQ(shown.size(), QSize(1536, 50));
    EXPECT_EQ(files.pictures(), QStringList());
}

TEST(CopyEndpoint, EveryWayThatAServerCanFail)
{
    const QByteArray moved = ScriptedServer::reply(307, "", "Location: http://127.0.0.1:1/\r\n");
    struct Row {
        const char* label;
        QByteArray reply;
        bool isMissing = true;
        int requests = 1;
    };
    const Row rows[]{
        {"redirection", moved},
        {"refused twice", ScriptedServer::reply(400, "no schema, please"), true, 2},
        {"error", ScriptedServer::reply(500, chatReply(sold))},
        {"hangs up", ""},
        {"no HTTP", "nonsense\r\n\r\n"},
        {"no JSON", ScriptedServer::reply(200, "words")},
        {"another form", ScriptedServer::reply(200, R"({"choices": {"message": "x"}})")},
        {"no content",
         ScriptedServer::reply(200, R"({"choices": [{"message": {"content": null}}]})")},
        {"empty", ScriptedServer::reply(200, chatReply("\n"))},
        {"invalid UTF-8",
         ScriptedServer::reply(200, "{\"choices\": [{\"message\": {\"content\": \"\xff\"}}]}")},
        {"10 MB", ScriptedServer::reply(200, chatReply(QByteArray(10 << 20, 'x')))},
        {"deep", ScriptedServer::reply(200, QByteArray(100'000, '['))},
        {"words", ScriptedServer::reply(200, chatReply("No puedo ver la imagen.")), false},
        {"cut", ScriptedServer::reply(200, chatReply(sold.left(60))), false},
    };
    const StandInEngine files;
    for (const Row& row : rows) {
        ScriptedServer server([&](const auto&) { return row.reply; });
        LocalAIService service(configuredProfile(endpointOf(server)));
        const GeneratedCopy copy = asked(service, files.photo());
        EXPECT_EQ(service.isMissingAnswer(copy), row.isMissing) << row.label;
        EXPECT_EQ(server.requests.size(), row.requests) << row.label;
        if (row.isMissing) {
            EXPECT_TRUE(copy.publicationCaption.contains(u"ojo-2b no respondió"_s)) << row.label;
        }
    }
    // A server that does not know schemas is asked without one.
    ScriptedServer plain([](const ScriptedServer::Request& request) {
        return request.body.contains("response_format")
                   ? ScriptedServer::reply(400, "{}")
                   : ScriptedServer::reply(200, chatReply(sold));
    });
    LocalAIService service(configuredProfile(endpointOf(plain)));
    EXPECT_EQ(asked(service, files.photo()).title, u"Luz"_s);
    EXPECT_TRUE(service.isMissingAnswer(asked(service, files.logFile()))) << "no photo";
    EXPECT_EQ(plain.requests.size(), 2);
}

TEST(CopyEndpoint, SilentServersAreGivenUp)
{
    ScriptedServer server;
    server.answerNothing();
    const StandInEngine files;
    LocalAIService hasty(configuredProfile(endpointOf(server)), {1min, 50ms, {}});
    EXPECT_TRUE(hasty.isMissingAnswer(asked(hasty, files.photo())));

    auto patient = std::make_unique<LocalAIService>(configuredProfile(endpointOf(server)));
    std::stop_source stop;
    const QUrl photo = QUrl::fromLocalFile(files.photo());
    QObject::connect(&server, &QTcpServer::newConnection, [&] { stop.request_stop(); });
    EXPECT_TRUE(patient->isMissingAnswer(asked(*patient, files.photo(), stop.get_token())));
    auto last = patient->analyze(photo, {}, SocialFormat::square);
    patient.reset();
    EXPECT_EQ(awaited(std::move(last)).title, u"El modelo no respondió"_s);
}

TEST(CopyEndpoint, StandsOnThisMachineOrIsNotUsed)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"moltiva.conf"_s);
    EXPECT_FALSE(configuredEndpoint(file));
    struct Row {
        QString address, asked;    // empty: not used
    };
    for (const Row& row :
         {Row{u"http://127.0.0.1:8080/v1"_s, u"http://127.0.0.1:8080/v1/chat/completions"_s},
          Row{u" http://[::1]:1/chat/completions/ "_s, u"http://[::1]:1/chat/completions"_s},
          Row{u"https://LOCALHOST"_s, u"https://localhost/chat/completions"_s},
          Row{u"http://192.168.1.7:8080"_s, {}}, Row{u"http://localhost.example.com"_s, {}},
          Row{u"http://127.0.0.1@example.com"_s, {}}, Row{u"http://user@127.0.0.1"_s, {}},
          Row{u"file:///etc/passwd"_s, {}}, Row{u"nonsense"_s, {}}}) {
        QSettings(file, QSettings::IniFormat).setValue(u"localCopy/url"_s, row.address);
        const auto endpoint = configuredEndpoint(file);
        ASSERT_TRUE(endpoint);
        EXPECT_EQ(endpoint->problem.isEmpty(), !row.asked.isEmpty()) << qPrintable(row.address);
        if (!row.asked.isEmpty()) {
            EXPECT_EQ(endpoint->url.toString(), row.asked);
        }
        EXPECT_EQ(configuredProfile(*endpoint).isInstalled(), !row.asked.isEmpty());
    }
    qputenv("MOLTIVA_LOCAL_COPY_URL", "http://localhost:9/v1");
    const auto own = configuredEndpoint(file);
    qunsetenv("MOLTIVA_LOCAL_COPY_URL");
    ASSERT_TRUE(own && own->problem.isEmpty());
    EXPECT_EQ(configuredProfile(*own).modelName, u"localhost:9"_s);
    EXPECT_EQ(configuredProfile(*own).readyDetail, u"En localhost:9. 0 créditos."_s);
}
