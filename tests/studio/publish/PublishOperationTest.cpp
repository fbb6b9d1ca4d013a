#include "studio/publish/PublishOperation.h"

#include "account/AccountError.h"
#include "platform/photo/PhotoCache.h"
#include "studio/publish/SendingRate.h"
#include "tests/FullDisk.h"
#include "tests/studio/PayingStudio.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

// Tests of a publication whose answers are scripted, with a real ledger.

namespace {

using State = PublishOutcome::State;

// The web site: tells what was sent to it, and answers as scripted.
struct ScriptedSite {
    // Gives the answer to a request, or throws. By default, the post is published.
    using Answer = std::function<SocialPublishResponse()>;

    QList<QJsonObject> requests;
    std::vector<Answer> answers;
    std::function<void()> arrived;    // called when a request has arrived
    bool takesAll = true;             // false: an answer comes before the whole request
    bool obeysStop = false;

    QStringList requestIds() const
    {
        QStringList ids;
        for (const QJsonObject& request : requests)
            ids.append(request[u"requestId"_s].toString());
        return ids;
    }
};

SocialPublishResponse accepted()
{
    return {.ok = true, .id = u"1"_s, .status = {}, .url = QUrl(u"https://ejemplo.es/p/1"_s)};
}

QCoro::Task<SocialPublishResponse> answered(ScriptedSite* site, QString request,
                                            SentBytes sentBytes, std::stop_token stop)
{
    QFile file(request);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    site->requests.append(QJsonDocument::fromJson(bytes).object());
    sentBytes(site->takesAll ? bytes.size() : bytes.size() / 2);
    if (site->arrived)
        site->arrived();
    if (site->obeysStop && stop.stop_requested())
        throw TransportError::stopped();
    ScriptedSite::Answer answer = &accepted;
    if (!site->answers.empty()) {
        answer = site->answers.front();
        site->answers.erase(site->answers.begin());
    }
    co_return answer();
}

ScriptedSite::Answer refusal(const AccountError& error)
{
    return [error]() -> SocialPublishResponse { throw error; };
}

ScriptedSite::Answer silence(TransportError error, bool wasSent)
{
    if (wasSent)
        error.setSent();
    return [error]() -> SocialPublishResponse { throw error; };
}

const AccountError inProgress =
    AccountError::message(u"En curso."_s, u"social_publish_in_progress"_s);

class PublishOperationTest : public ::testing::Test {
protected:
    PublishOperationTest()
    {
        studio.signIn();
        studio.load({world.photo(u"a.png"_s, Qt::blue), world.photo(u"b.png"_s, Qt::red)});
        request.items = studio.session.batch().items;
        request.outputSize = &PayingStudio::smallSize;
        request.caption = u"¡Hola!\n#otoño 🍂"_s;
        services.photos = std::make_shared<PhotoCache>(world.file(u"miniaturas"_s));
        services.stagingPlace = world.file(u"espera"_s);
        services.charge.account = &studio.account;
        services.charge.journal = &studio.journal;
        services.charge.payments = [this] { return studio.session.payments(); };
        services.charge.record = [this](const QList<RenderedOutput>& outputs,
                                        const Strike& strike) {
            return studio.session.markRenderedOutputsAsPaid(outputs, strike);
        };
        services.records = std::make_shared<PublishRecords>(
            studio.preferences, studio.account.accountKey(), studio.journal.programRun());
        services.send = [this](const QString& file, SentBytes sentBytes, std::stop_token stop) {
            return answered(&site, file, sentBytes, stop);
        };
        services.preferences = &studio.preferences;
        services.pause = 0ms;
        services.now = [this] { return now; };
    }
    PublishOutcome publish()
    {
        told.clear();
        control = std::make_shared<PublishControl>();
        control->working = [this](const QString& sentence) { told.append(sentence); };
        control->progressed = [this](const PublishProgress& progress) {
            if (progressed)
                progressed(progress);
        };
        control->confirms = [this](const QList<PublishCheck>&) { return isConfirmed; };
        const PublishOutcome outcome = awaited(runPublish(request, services, control));
        EXPECT_TRUE(
            QDir(services.stagingPlace).entryList(QDir::Dirs | QDir::NoDotAndDotDot).isEmpty())
            << "the pictures are gone";
        return outcome;
    }
    const PublishRecord* stored() const
    {
        const auto& records = services.records->all();
        return records.isEmpty() ? nullptr : &records[0];
    }
    // "reserve 100 #1": the ids are numbered by their first use.
    QStringList moves() const
    {
        QStringList ids, lines;
        for (const PayingWorld::Entry& entry : world.ledger()) {
            if (!ids.contains(entry.requestId))
                ids.append(entry.requestId);
            lines.append(u"%1 %2 #%3"_s.arg(entry.kind, QString::number(std::abs(entry.amount)),
                                            QString::number(ids.indexOf(entry.requestId) + 1)));
        }
        return lines;
    }

    PayingWorld world;
    PayingStudio studio{world};
    ScriptedSite site;
    PublishServices services;
    PublishRequest request;
    bool isConfirmed = false;
    std::shared_ptr<PublishControl> control;
    std::function<void(const PublishProgress&)> progressed;
    QStringList told;
    QDateTime now = QDateTime::fromMSecsSinceEpoch(1'790'000'000'000, Qt::UTC);
};

}    // namespace

TEST_F(PublishOperationTest, APostIsSentAsItIsPaidOnceAndSentAgainOnlyAfterAQuestion)
{
    site.arrived = [this] {
        ASSERT_TRUE(stored());
        EXPECT_EQ(stored()->state, PublishRecord::State::sending) << "before the answer";
        EXPECT_EQ(moves(), QStringList{u"reserve 100 #1"_s});
    };
    const PublishOutcome first = publish();
    EXPECT_EQ(first.state, State::done);
    EXPECT_EQ(first.sentence(), u"Publicación enviada a Instagram. Coste: 100 créditos."_s);
    EXPECT_EQ(first.url, QUrl(u"https://ejemplo.es/p/1"_s));
    EXPECT_EQ(told, (QStringList{u"Descontando 100 créditos para publicar..."_s,
                                 u"Enviando 2 imagen(es) a Instagram. Coste: 100 créditos..."_s}));
    const QJsonObject sent = site.requests.value(0);
    EXPECT_EQ(sent[u"network"_s].toString(), u"instagram"_s);
    EXPECT_EQ(sent[u"placement"_s].toString(), u"feed"_s);
    EXPECT_EQ(sent[u"caption"_s].toString(), request.caption);
    const QJsonArray images = sent[u"images"_s].toArray();
    ASSERT_EQ(images.size(), 2);
    EXPECT_EQ(images[0][u"fileName"_s].toString(), u"a-moltiva.png"_s);
    EXPECT_EQ(images[1][u"fileName"_s].toString(), u"b-moltiva.png"_s);
    EXPECT_EQ(images[0][u"mimeType"_s].toString(), u"image/png"_s);
    const auto picture = QImage::fromData(
        QByteArray::fromBase64(images[1][u"dataBase64"_s].toString().toLatin1()), "PNG");
    EXPECT_EQ(picture.size(), QSize(108, 135));

    ASSERT_TRUE(stored());
    EXPECT_EQ(stored()->state, PublishRecord::State::published);
    EXPECT_EQ(stored()->requestId, sent[u"requestId"_s].toString());
    EXPECT_EQ(stored()->images, (QStringList{u"a.png"_s, u"b.png"_s}));
    EXPECT_EQ(stored()->pictures.size(), 2);
    EXPECT_EQ(QImage::fromData(stored()->pictures.value(0)).height(), 78);

    site.arrived = {};
    const PublishOutcome asked = publish();
    EXPECT_EQ(asked.state, State::unconfirmed);
    EXPECT_TRUE(asked.sentence().startsWith(u"Ya se publicó el "_s))
        << qPrintable(asked.sentence());
    EXPECT_EQ(site.requests.size(), 1);
    isConfirmed = true;
    const PublishOutcome second = publish();
    EXPECT_EQ(second.sentence(), u"Publicación enviada a Instagram. Sin coste adicional."_s);
    EXPECT_EQ(told, QStringList{u"Enviando 2 imagen(es) a Instagram. Ya estaban pagadas."_s});
    EXPECT_NE(site.requestIds()[0], site.requestIds()[1]);
    EXPECT_EQ(moves(), QStringList{u"reserve 100 #1"_s}) << "nothing was reserved";
    EXPECT_EQ(services.records->all().size(), 2);
}

TEST_F(PublishOperationTest, WhatGoesWrongAfterTheChargeGivesBackExactlyThat)
{
    struct Case {
        const char* label;
        ScriptedSite::Answer answer;
        bool takesAll;
        State state;
        QString sentence;
    };
    const QString back = u" Se han devuelto los 100 créditos."_s;
    const QString late = TransportError::timedOut().text();
    const TransportError broken(TransportError::Kind::brokenOff, u"Cortado."_s);
    const auto outOfMemory = []() -> SocialPublishResponse { throw std::bad_alloc(); };
    const QList<Case> cases{
        {"refused", refusal(AccountError::message(u"Rechazada."_s, u"x"_s)), true, State::failed,
         u"Rechazada."_s + back},
        {"signed out", refusal(AccountError::unauthorized()), true, State::failed,
         u"Necesitas iniciar sesión."_s + back},
        {"late, not sent", silence(TransportError::timedOut(), false), false, State::failed,
         late + back},
        {"broken off, not sent", silence(broken, false), false, State::failed,
         u"Cortado."_s + back},
        {"unreadable, not sent", refusal(AccountError::invalidResponse()), false, State::failed,
         u"No se ha podido leer la respuesta del servidor."_s + back},
        {"late, told as sent", silence(TransportError::timedOut(), false), true, State::unknown,
         late + u" Puede que se haya publicado."_s + back},
        {"no memory, not sent", outOfMemory, false, State::failed,
         u"No se ha podido completar la operación."_s + back},
        {"late, sent", silence(TransportError::timedOut(), true), true, State::unknown,
         late + u" Puede que se haya publicado."_s + back},
        {"broken off, sent", silence(broken, true), true, State::unknown,
         u"Cortado. Puede que se haya publicado."_s + back},
        {"unreadable", refusal(AccountError::invalidResponse()), true, State::unknown,
         u"No se ha podido leer la respuesta del servidor. Puede que se haya publicado."_s + back},
    };
    QStringList expected;
    for (const Case& each : cases) {
        site.answers = {each.answer};
        site.takesAll = each.takesAll;
        request.caption = QLatin1StringView(each.label);    // each is a post of its own
        isConfirmed = true;
        const PublishOutcome outcome = publish();
        EXPECT_EQ(outcome.state, each.state) << each.label;
        EXPECT_EQ(outcome.sentence(), each.sentence) << each.label;
        expected += {u"reserve 100 #1"_s, u"refund 100 #1"_s};
        EXPECT_EQ(moves(), expected) << each.label;
        const bool isKept = stored() && stored()->caption == request.caption;
        EXPECT_EQ(isKept, each.state == State::unknown) << each.label;
        EXPECT_TRUE(!isKept || stored()->state == PublishRecord::State::unknown) << each.label;
    }
    EXPECT_TRUE(studio.session.batch().items[0].paidRenderFingerprints.isEmpty());
}

TEST_F(PublishOperationTest, AnAttemptInDoubtIsRepeatedUnderItsRequestAndLaterAskedFor)
{
    const auto late = silence(TransportError::timedOut(), true);
    site.answers = {late};
    EXPECT_EQ(publish().state, State::unknown);
    now = now.addSecs(299);
    site.answers = {refusal(inProgress), refusal(inProgress), late};
    EXPECT_EQ(publish().state, State::unknown);
    EXPECT_EQ(told.count(u"Esperando a saber si se publicó…"_s), 2);
    site.answers = {refusal(AccountError::message(u"Desconectada."_s, u"x"_s))};
    EXPECT_EQ(publish().state, State::failed);
    ASSERT_TRUE(stored());
    EXPECT_EQ(stored()->state, PublishRecord::State::unknown) << "it is still not known";
    const QStringList repeated = site.requestIds();
    EXPECT_EQ(repeated, QStringList(5, repeated[0]));

    request.caption = u"Otro texto"_s;
    const PublishOutcome other = publish();
    EXPECT_EQ(other.state, State::unconfirmed);
    EXPECT_TRUE(other.sentence().startsWith(u"Puede que ya se publicara el "_s));
    request.caption = stored()->caption;
    now = now.addSecs(301);
    EXPECT_EQ(publish().state, State::unconfirmed);
    now = now.addSecs(-302 - 299);
    EXPECT_EQ(publish().state, State::unconfirmed) << "the clock was set back";

    now = now.addSecs(302 + 299);
    now = stored()->time;
    site.answers = {refusal(inProgress)};
    const qsizetype before = site.requests.size();
    EXPECT_EQ(publish().sentence(), u"Publicación enviada a Instagram. Coste: 100 créditos."_s);
    EXPECT_EQ(site.requests.size(), before + 2);
    EXPECT_EQ(site.requestIds().first(), site.requestIds().last());
    EXPECT_EQ(services.records->all().size(), 1);
    EXPECT_EQ(world.charged(), 100);

    isConfirmed = true;
    EXPECT_EQ(publish().state, State::done);
    EXPECT_NE(site.requestIds().first(), site.requestIds().last());
}

TEST_F(PublishOperationTest, ARequestThatIsGoingOnIsInDoubtUntilTheServiceRefusesIt)
{
    struct Case {
        const char* label;
        ScriptedSite::Answer answer;
        State state;
    };
    const TransportError broken(TransportError::Kind::brokenOff, u"Cortado."_s);
    const auto refused = [](const QString& code) {
        return refusal(AccountError::message(u"Rechazada."_s, code));
    };
    isConfirmed = true;
    site.takesAll = false;
    for (const Case& each :
         {Case{"broken", silence(broken, false), State::unknown},
          Case{"signed out", refusal(AccountError::unauthorized()), State::unknown},
          Case{"by something between", refused({}), State::unknown},
          Case{"refused", refused(u"social_provider_publish_failed"_s), State::failed}}) {
        site.answers = {refusal(inProgress), each.answer};
        request.caption = QLatin1StringView(each.label);
        EXPECT_EQ(publish().state, each.state) << each.label;
        const bool isKept = stored() && stored()->caption == request.caption;
        EXPECT_EQ(isKept, each.state == State::unknown) << each.label;
        EXPECT_EQ(world.charged(), 0);
    }
    request.caption = u"Sin fin"_s;
    site.answers.assign(9, refusal(inProgress));
    site.arrived = [this] { now = now.addSecs(100); };
    const PublishOutcome endless = publish();
    EXPECT_EQ(endless.state, State::unknown);
    EXPECT_TRUE(endless.sentence().startsWith(TransportError::timedOut().text()));
    EXPECT_EQ(site.answers.size(), 6) << "it is asked for five minutes";
    EXPECT_EQ(stored()->state, PublishRecord::State::unknown);
    EXPECT_EQ(world.charged(), 0);
}

TEST_F(PublishOperationTest, WhatAnotherProgramHasSentMeanwhileIsNotSentAgainUnasked)
{
    PreferencesStore theirs(world.file(u"p.sqlite"_s));
    ProgramRun run(world.file(u"runs"_s));
    PublishRecords others(theirs, studio.account.accountKey(), run);
    PublishRecord post;
    const auto publishTheirs = [&] {
        post.state = PublishRecord::State::published;
        post.url = QUrl(u"https://ejemplo.es/p/9"_s);
        EXPECT_TRUE(others.keep(post));
    };
    // The service refuses our attempt, but has published theirs under the same identifier.
    site.answers = {refusal(AccountError::message(u"Rechazada."_s, u"x"_s))};
    site.arrived = [&] {
        post = *stored();
        publishTheirs();
    };
    EXPECT_EQ(publish().state, State::failed);
    ASSERT_TRUE(stored());
    EXPECT_EQ(*stored(), post) << "theirs stays";
    EXPECT_TRUE(others.remove(post.id) && services.records->remove(post.id));

    site.arrived = {};
    studio.journal.stepReached = [&](const char* step) {
        if (QByteArrayView(step) == "reserved")
            publishTheirs();
    };
    isConfirmed = true;
    const PublishOutcome overtaken = publish();
    studio.journal.stepReached = {};
    EXPECT_EQ(overtaken.state, State::unconfirmed);
    EXPECT_EQ(overtaken.found, QList{checkOfPublished(post)});
    EXPECT_TRUE(overtaken.sentence().startsWith(u"Ya se publicó el "_s));
    EXPECT_TRUE(overtaken.sentence().endsWith(u" Se han devuelto los 100 créditos."_s));
    EXPECT_EQ(site.requests.size(), 1);
    EXPECT_EQ(services.records->all(), QList{post});
    EXPECT_EQ(world.charged(), 0);
    EXPECT_EQ(publish().state, State::done) << "now it is known";
}

TEST_F(PublishOperationTest, WhatTheChecksFindIsToldBeforeAnythingIsReserved)
{
    using Kind = PublishCheckKind;
    const auto kinds = [](const PublishOutcome& outcome) {
        QList<Kind> found;
        for (const PublishCheck& check : outcome.found)
            found.append(check.kind);
        return found;
    };
    services.largestPost = 100;
    storeSendingRate(studio.preferences, 0.5);
    const PublishOutcome slow = publish();
    EXPECT_EQ(slow.state, State::unconfirmed);
    EXPECT_EQ(kinds(slow), (QList{Kind::requestBytes, Kind::requestTime}));
    EXPECT_TRUE(slow.refundNotice().isEmpty());
    EXPECT_TRUE(moves().isEmpty());
    EXPECT_TRUE(site.requests.isEmpty() && !stored());
    isConfirmed = true;
    EXPECT_EQ(publish().state, State::done) << "no check refuses anything";
}

TEST_F(PublishOperationTest, AnImageThatIsTooLargeIsToldBeforeAnythingIsReserved)
{
    // Noise, which no recompression makes smaller.
    QImage noise(1900, 2375, QImage::Format_RGB32);
    QRandomGenerator random(7);
    random.fillRange(reinterpret_cast<quint32*>(noise.bits()), noise.sizeInBytes() / 4);
    EXPECT_TRUE(noise.save(world.file(u"fotos/a.png"_s)));
    studio.load({QUrl::fromLocalFile(world.file(u"fotos/a.png"_s))});
    request.items = {studio.session.batch().items.last()};
    request.outputSize = [](SocialFormat) { return QSizeF(1900, 2375); };
    for (const auto network : allCases<SocialPublishNetwork>()) {
        request.network = network;
        const PublishOutcome large = publish();
        EXPECT_EQ(large.state, State::unconfirmed);
        EXPECT_TRUE(large.sentence().startsWith(u"Pesa 1"_s)) << qPrintable(large.sentence());
        EXPECT_TRUE(large.sentence().contains(row(network).title));
        EXPECT_TRUE(moves().isEmpty() && site.requests.isEmpty());
    }
}

TEST_F(PublishOperationTest, AStopCostsNothing)
{
    using Stage = PublishProgress::Stage;
    for (const Stage stage : {Stage::rendering, Stage::charging, Stage::sending, Stage::asking}) {
        progressed = [&](const PublishProgress& progress) {
            if (progress.stage == stage && progress.canStop)
                control->stop.request_stop();
        };
        site.takesAll = stage != Stage::sending;
        site.obeysStop = true;
        if (stage == Stage::asking)
            site.answers = {refusal(inProgress)};
        const PublishOutcome outcome = publish();
        const bool isInDoubt = stage == Stage::asking;
        EXPECT_EQ(outcome.state, isInDoubt ? State::unknown : State::stopped) << int(stage);
        EXPECT_EQ(stored() != nullptr, isInDoubt) << int(stage);
        const QString back =
            stage >= Stage::sending ? u" Se han devuelto los 100 créditos."_s : QString();
        EXPECT_EQ(outcome.sentence(),
                  u"Publicación detenida."_s +
                      (isInDoubt ? u" Puede que se haya publicado."_s : QString()) + back);
        EXPECT_EQ(world.charged(), 0);
    }
}

TEST_F(PublishOperationTest, WhatCannotBePreparedPaidOrNotedIsNotSent)
{
    world.leaveCredits(99);
    awaited(studio.account.refreshSilently());
    request.price = 100;
    EXPECT_EQ(publish().sentence(), u"Necesitas 100 créditos para publicar estas imágenes."_s);
    request.items = request.items.mid(0, 1);
    studio.journal.stepReached = [](const char* step) {
        if (QByteArrayView(step) == "reserved")
            refuseWrites(true);
    };
    const PublishOutcome unnoted = publish();
    refuseWrites(false);
    studio.journal.stepReached = {};
    EXPECT_EQ(unnoted.sentence(),
              u"No se ha podido anotar la publicación antes de enviarla. Se han "
              "devuelto los 50 créditos."_s);
    const QString unprepared = u"No se han podido preparar las imágenes finales para publicar."_s;
    const QString place =
        std::exchange(services.stagingPlace, world.photo(u"c.png"_s).toLocalFile());
    EXPECT_EQ(publish().sentence(), unprepared + u" No se pudo escribir en «"_s +
                                        services.stagingPlace +
                                        u"», donde se preparan las imágenes. ¿Queda espacio en el "
                                        "disco?"_s);
    services.stagingPlace = place;
    QFile::remove(world.file(u"fotos/a.png"_s));
    EXPECT_EQ(publish().sentence(), unprepared + u" No se ha podido leer la foto «"_s +
                                        world.file(u"fotos/a.png"_s) + u"»."_s);
    EXPECT_TRUE(site.requests.isEmpty());
    EXPECT_EQ(world.charged(), 0);
}

TEST_F(PublishOperationTest, ALinkThatABrowserMayNotOpenIsNoLinkAndNoFailure)
{
    for (const QString& url : {u"javascript:alert(1)"_s, u"file:///etc/passwd"_s, u"ftp://e.es/a"_s,
                               u"https://e.es/"_s + QString(100'000, u'a'), QString()}) {
        site.answers = {[url] {
            SocialPublishResponse response;
            if (!url.isEmpty())
                response.url = QUrl(url);
            return response;
        }};
        isConfirmed = true;
        const PublishOutcome outcome = publish();
        EXPECT_EQ(outcome.state, State::done);
        EXPECT_FALSE(outcome.url || stored()->url) << qPrintable(url.left(40));
    }
    EXPECT_EQ(moves(), QStringList{u"reserve 100 #1"_s});
}
