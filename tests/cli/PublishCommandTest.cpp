#include "studio/publish/SendingRate.h"
#include "tests/cli/CommandTest.h"
#include "tests/service/TestService.h"

#include <QJsonArray>
#include <QRandomGenerator>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

// Runs the command against the real service.
class PublishCommandTest : public CommandTest {
protected:
    void SetUp() override
    {
        m_service = QString::fromStdString(service.address());
        const auto process = started({u"register"_s, u"--email"_s, u"ana@ejemplo.es"_s});
        process->write(QByteArray(TestService::password) + '\n');
        process->closeWriteChannel();
        ASSERT_EQ(ended(*process).status, 0);
        ASSERT_EQ(service
                      .post("/api/auth/login",
                            {{"email", "ana@ejemplo.es"}, {"password", TestService::password}})
                      .status,
                  200);
    }
    void connectNetwork(const QString& network)
    {
        const Outcome outcome = run({u"connect"_s, network});
        EXPECT_EQ(outcome.status, 0) << qPrintable(outcome.err);
        const std::string path = QUrl(outcome.out.trimmed()).path().toStdString();
        EXPECT_EQ(service.fill(path, path, {{"accion", "conectar"}, {"nombre", "Casa Sol"}}).status,
                  200);
    }
    Outcome publish(const QString& network, const QStringList& arguments)
    {
        return run(QStringList{u"publish"_s, u"--network"_s, network} + arguments);
    }
    // A photo that does not compress.
    QString noise(const QString& name, quint32 seed)
    {
        QImage image(1080, 1350, QImage::Format_RGB32);
        QRandomGenerator random(seed);
        random.fillRange(reinterpret_cast<quint32*>(image.bits()), image.sizeInBytes() / 4);
        EXPECT_TRUE(image.save(path(name)));
        return path(name);
    }
    int balance() { return int(service.get("/api/auth/me").json().value("balance", -1)); }
    // The caption on the page of the post that the command has told, and the number of its images.
    std::pair<QString, int> post(const Outcome& outcome)
    {
        const QUrl url(outcome.out.trimmed().section(u'\n', -1));
        const QString page = QString::fromStdString(service.get(url.path().toStdString()).body);
        static const QRegularExpression caption(u"<pre[^>]*>(.*)</pre>"_s,
                                                QRegularExpression::DotMatchesEverythingOption);
        return {caption.match(page).captured(1), int(page.count(u"<img "_s))};
    }
    QString written(const QString& names)
    {
        QByteArray rows = "archivo;titulo;subtitulo;cta;texto_publicacion\n";
        for (const QString& name : names.split(u' '))
            rows +=
                name.toUtf8() + ";Respira;Casas con leña;Reserva;Texto de " + name.toUtf8() + '\n';
        return holding(u"textos.csv"_s, rows);
    }

    TestService service;
};

}    // namespace

TEST_F(PublishCommandTest, aPostAppearsOnThePageWithItsCaptionAndIsPaidOnce)
{
    const QString one = photo(u"a.jpg"_s), two = photo(u"b.jpg"_s);
    const QStringList texts{u"--texts"_s, written(u"a.jpg b.jpg"_s)};
    EXPECT_EQ(publish(u"facebook"_s, {one}).status, 1) << "not connected";
    EXPECT_TRUE(run({u"networks"_s}).out.contains(u"facebook  Sin conectar"_s));
    connectNetwork(u"facebook"_s);
    EXPECT_TRUE(run({u"networks"_s}).out.contains(u"facebook  Conectada  Casa Sol"_s));

    const Outcome dry = publish(u"facebook"_s, texts + QStringList{u"--dry-run"_s, one, two});
    EXPECT_EQ(dry.status, 0) << qPrintable(dry.err);
    EXPECT_EQ(dry.out, u"Coste: 100 créditos (sin pagar: 2 de 2).\n"_s);
    EXPECT_EQ(balance(), 10'000);

    const QString caption = holding(u"c.txt"_s, "¡Hola! 🌲\r\nسلام\n");
    const Outcome sent =
        publish(u"Facebook"_s, texts + QStringList{u"--caption-file"_s, caption, one, two});
    EXPECT_EQ(sent.status, 0) << qPrintable(sent.err);
    EXPECT_TRUE(sent.out.startsWith(u"Publicación enviada a Facebook. Coste: 100 créditos.\n"_s));
    EXPECT_EQ(post(sent), std::pair(u"¡Hola! 🌲\nسلام"_s, 2));
    EXPECT_EQ(balance(), 9'900);

    const Outcome dryAgain = publish(u"facebook"_s, texts + QStringList{u"--dry-run"_s, one, two});
    EXPECT_TRUE(dryAgain.err.contains(u"Ya se publicó el "_s)) << qPrintable(dryAgain.err);
    EXPECT_EQ(dryAgain.out, u"Coste: 0 créditos (sin pagar: 0 de 2).\n"_s);
    const Outcome again = publish(u"facebook"_s, texts + QStringList{one, two});
    EXPECT_EQ(again.status, 1);
    EXPECT_TRUE(again.err.contains(u"Ya se publicó el "_s) && again.err.contains(u"--again"_s))
        << qPrintable(again.err);
    const Outcome twice = publish(u"facebook"_s, texts + QStringList{u"--again"_s, one, two});
    EXPECT_TRUE(twice.out.startsWith(u"Publicación enviada a Facebook. Sin coste adicional.\n"_s))
        << qPrintable(twice.err);
    EXPECT_TRUE(twice.err.contains(u"Ya se publicó el "_s)) << "what --again confirms is told";
    EXPECT_EQ(post(twice), std::pair(u"Texto de a.jpg"_s, 2));
    EXPECT_EQ(balance(), 9'900);
}

TEST_F(PublishCommandTest, theChecksAndTheLimitsAreThoseOfTheWindow)
{
    connectNetwork(u"instagram"_s);
    connectNetwork(u"linkedin"_s);
    const Outcome story =
        publish(u"instagram"_s, {u"--placement"_s, u"story"_s, u"--dry-run"_s, photo(u"a.jpg"_s)});
    EXPECT_TRUE(story.err.contains(
        u"El formato Carrusel / Post vertical no llena una story: se verá con bandas.\n"_s))
        << qPrintable(story.err);
    EXPECT_TRUE(
        story.err.contains(u"El título, el subtítulo y el CTA siguen siendo los de ejemplo.\n"_s));

    QStringList many;
    for (int i = 0; i < 12; ++i)
        many.append(photo(u"m/%1.jpg"_s.arg(i)));
    const Outcome cut = publish(
        u"linkedin"_s,
        QStringList{u"--dry-run"_s, u"--json"_s, u"--caption"_s, u"#a #b #c #d #e #f"_s} + many);
    EXPECT_TRUE(cut.err.contains(
        u"LinkedIn permite 9 imagen(es). Se publicarán las primeras 9 seleccionadas."_s));
    const QJsonObject line = objectsIn(cut).value(0);
    EXPECT_EQ(line[u"outcome"_s].toString(), u"dryRun"_s);
    EXPECT_EQ(line[u"cost"_s].toInt(), 450);
    const QJsonObject note = line[u"checks"_s].toArray()[9].toObject();
    EXPECT_EQ(line[u"checks"_s].toArray().size(), 10);
    EXPECT_EQ(note[u"kind"_s].toString(), u"manyHashtags"_s);
    EXPECT_FALSE(note[u"warning"_s].toBool(true));
    EXPECT_EQ(balance(), 10'000);
}

TEST_F(PublishCommandTest, whatIsKnownBeforeRenderingIsToldBeforeAnythingIsCharged)
{
    connectNetwork(u"instagram"_s);
    const QString texts =
        holding(u"t.csv"_s, "archivo;titulo;subtitulo;cta\na.jpg;" +
                                QByteArray("Palabra ").repeated(150) + ";Gemma no respondió;Ver\n");
    const QString caption = u"#a "_s.repeated(31) + u"@b "_s.repeated(21) + QString(2'200, u'c');
    const QString one = photo(u"a.jpg"_s);
    const auto publishOne = [&](const QStringList& more) {
        return publish(u"instagram"_s,
                       QStringList{u"--texts"_s, texts, u"--json"_s, u"--caption"_s, caption, one} +
                           more);
    };
    const auto told = [&](const QStringList& more) {
        const Outcome sent = publishOne(more);
        EXPECT_EQ(sent.status, 0) << qPrintable(sent.err);
        QStringList kinds;
        for (const QJsonValue& each : objectsIn(sent).value(0)[u"checks"_s].toArray()) {
            kinds.append(each[u"kind"_s].toString());
            const qsizetype at = sent.err.indexOf(each[u"sentence"_s].toString());
            EXPECT_TRUE(at >= 0 && at < sent.err.indexOf(u"Descontando "_s))
                << qPrintable(sent.err);
        }
        return kinds.join(u' ').toStdString();
    };
    EXPECT_EQ(told({u"--format"_s, u"story-reel"_s}),
              "format captionLength tags tags missingAnswer");
    EXPECT_EQ(told({u"--placement"_s, u"story"_s}), "format missingAnswer overflow");

    const int before = balance();
    const Outcome again = publishOne({u"--placement"_s, u"story"_s});
    EXPECT_EQ(again.status, 1);
    EXPECT_EQ(again.err.count(u"Ya se publicó el "_s), 1) << qPrintable(again.err);
    EXPECT_EQ(objectsIn(again).value(0)[u"outcome"_s].toString(), u"unconfirmed"_s);
    EXPECT_EQ(balance(), before);
}

TEST_F(PublishCommandTest, theRateOfTheLastSendingIsKeptAndJudgesTheNext)
{
    connectNetwork(u"facebook"_s);
    EXPECT_EQ(publish(u"facebook"_s, {noise(u"a.png"_s, 1)}).status, 0);
    PreferencesStore preferences(path(u"home/moltiva/moltiva.sqlite"_s));
    EXPECT_GT(lastSendingRate(preferences).value_or(0), 1'000);
    storeSendingRate(preferences, 1'000);
    const int before = balance();
    const Outcome slow = publish(u"facebook"_s, {noise(u"b.png"_s, 2)});
    EXPECT_EQ(slow.status, 1);
    EXPECT_TRUE(slow.err.contains(u"A la velocidad del último envío tardaría "_s))
        << qPrintable(slow.err);
    EXPECT_EQ(balance(), before);
}

TEST_F(PublishCommandTest, wrongUseIsToldBeforeAnything)
{
    const QString one = photo(u"a.jpg"_s);
    for (const QStringList& arguments :
         {QStringList{u"--network"_s, u"otra"_s, one}, QStringList{one},
          QStringList{u"--network"_s, u"facebook"_s, u"--placement"_s, u"story"_s, one},
          QStringList{u"--network"_s, u"facebook"_s, u"--placement"_s, u"muro"_s, one},
          QStringList{u"--network"_s, u"facebook"_s, u"--caption-file"_s, path(u"none"_s), one},
          QStringList{u"--network"_s, u"facebook"_s, u"--caption-file"_s,
                      holding(u"latin"_s, "a\xf1o"), one},
          QStringList{u"--network"_s, u"facebook"_s, u"--caption"_s, u"a"_s, u"--caption-file"_s,
                      one, one},
          QStringList{u"--network"_s, u"facebook"_s, u"--caption-file"_s,
                      holding(u"long.txt"_s, QByteArray(100'001, 'a')), one},
          QStringList{u"--network"_s, u"facebook"_s}}) {
        const Outcome outcome = run(QStringList{u"publish"_s} + arguments);
        EXPECT_EQ(outcome.status, 2) << qPrintable(arguments.join(u' '));
        EXPECT_TRUE(outcome.err.startsWith(u"moltiva publish: "_s)) << qPrintable(outcome.err);
    }
    EXPECT_EQ(run({u"connect"_s, u"otra"_s}).status, 2);
    EXPECT_EQ(run({u"connect"_s}).status, 2);
    EXPECT_EQ(run({u"logout"_s}).status, 0);
    EXPECT_EQ(publish(u"facebook"_s, {one}).status, 3);
    EXPECT_EQ(run({u"networks"_s}).status, 3);
    const Outcome connecting = run({u"connect"_s, u"instagram"_s});
    EXPECT_EQ(connecting.status, 3);
    EXPECT_TRUE(connecting.err.contains(
        u"Necesitas iniciar sesión en Moltiva antes de conectar Instagram"_s));
}

TEST_F(CommandTest, aPostWithoutAnAnswerMayHaveBeenPublished)
{
    m_account.answer("GET /api/social/status",
                     R"({"ok":true,"networks":[{"network":"facebook","name":"Facebook",
                         "provider":"p","isConnected":true,"connectURL":"https://c.es"}]})");
    for (const QByteArray operation : {"reserve", "refund"})
        m_account.answer("POST /api/credits/social-copy/" + operation,
                         R"({"ok":true,"cost":50,"balance":4000})");
    m_account.hold("POST /api/social/publish");
    const auto process =
        started({u"publish"_s, u"--network"_s, u"facebook"_s, u"--json"_s, photo(u"a.jpg"_s)});
    wait([&] {
        return m_account.log().size() > 0 &&
               m_account.log().last().startsWith("POST /api/social/publish");
    });
    m_account.drop();
    const Outcome outcome = ended(*process);
    EXPECT_EQ(outcome.status, 6);
    EXPECT_TRUE(outcome.err.contains(u"Puede que se haya publicado."_s)) << qPrintable(outcome.err);
    EXPECT_EQ(objectsIn(outcome).value(0)[u"outcome"_s].toString(), u"unknown"_s);
}
