#include "platform/photo/PhotoCache.h"
#include "studio/publish/SendingRate.h"
#include "tests/studio/FaultyProxy.h"
#include "tests/studio/PayingStudio.h"
#include "tests/studio/publish/BadPosts.h"
#include "tests/support/ScriptedAccount.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using enum SocialPublishNetwork;
using enum SocialPublishPlacement;

constexpr auto publishTarget = "/api/social/publish";

// Publishing to the service that runs on this machine.
class StudioPublishTest : public ::testing::Test {
protected:
    void start(const QUrl& address = {}, const RequestLimits& limits = {})
    {
        studio.reset();
        studio = std::make_unique<PayingStudio>(world, address, PayingStudio::smallSize, limits);
        session().setPublishService(studio->api);
        studio->signIn();
    }
    void load(int count)
    {
        QList<QUrl> photos;
        for (int i = 0; i < count; ++i)
            photos.append(world.photo(u"%1.png"_s.arg(i, 2, 10, QChar(u'0')),
                                      QColor::fromHsv(20 * i, 200, 200)));
        studio->load(photos);
        session().selectAll();
    }
    void connect(SocialPublishNetwork network)
    {
        const QUrl page = awaited(studio->api.socialConnectToken(rawValue(network))).url;
        const std::string path = page.path().toStdString();
        EXPECT_EQ(
            world.service.fill(path, path, {{"accion", "conectar"}, {"nombre", "Ana"}}).status,
            200);
        if (publish().isPublishPresented())
            awaited(publish().refreshSocialConnectionsOnly());
    }
    void open()
    {
        publish().openPublishWindow();
        EXPECT_TRUE(
            turnUntil([this] { return publish().publishStatusKind() != StatusKind::working; }));
    }
    StudioSession& session() { return studio->session; }
    StudioPublish& publish() { return studio->session.publish(); }
    QString published(SocialPublishNetwork network, SocialPublishPlacement placement = feed)
    {
        awaited(publish().preparePublish(network, placement));
        return publish().publishStatus();
    }

    PayingWorld world;
    std::unique_ptr<PayingStudio> studio;
};

}    // namespace

TEST_F(StudioPublishTest, TwelveImagesForLinkedInAreNineAndWhatIsPaidIsFree)
{
    start();
    load(12);
    open();
    EXPECT_EQ(publish().publishStatus(),
              u"Conecta una red en Moltiva local para poder publicar desde la app."_s);
    connect(linkedIn);
    connect(instagram);
    awaited(publish().refreshSocialStatus());
    EXPECT_EQ(publish().publishStatus(),
              u"2 red(es) conectada(s). Puedes publicar o conectar otra cuenta."_s);
    EXPECT_TRUE(turnUntil([this] { return publish().displayedPublishCosts().size() == 3; }));
    EXPECT_EQ(
        publish().displayedPublishCosts(),
        (QMap<SocialPublishNetwork, qint64>{{instagram, 500}, {facebook, 500}, {linkedIn, 450}}));

    QStringList told;
    QObject::connect(&publish(), &StudioPublish::working,
                     [&](const QString& sentence) { told.append(sentence); });
    EXPECT_EQ(published(linkedIn), u"Publicación enviada a LinkedIn. Coste: 450 créditos."_s);
    EXPECT_EQ(told,
              (QStringList{
                  u"Preparando publicación para LinkedIn"_s,
                  u"LinkedIn permite 9 imagen(es). Se publicarán las primeras 9 seleccionadas."_s,
                  u"Descontando 450 créditos para publicar..."_s,
                  u"Enviando 9 imagen(es) a LinkedIn. Coste: 450 créditos..."_s}));
    EXPECT_EQ(session().status(), publish().publishStatus());
    ASSERT_TRUE(publish().publishedPost() && publish().publishedPost()->url);
    const std::string page =
        world.service.get(publish().publishedPost()->url->path().toStdString()).body;
    EXPECT_NE(page.find("/9\""), std::string::npos) << page;
    EXPECT_EQ(page.find("/10\""), std::string::npos);
    EXPECT_EQ(publish().history().size(), 1);
    EXPECT_EQ(world.charged(), 450);
    EXPECT_EQ(publish().balance(), world.balance());

    session().selectSingleIndex(8);
    EXPECT_TRUE(
        turnUntil([this] { return publish().displayedPublishCosts().value(instagram) == 0; }));
    EXPECT_EQ(published(instagram, story),
              u"Publicación enviada a Instagram. Sin coste adicional."_s);
    EXPECT_TRUE(told.contains(u"Preparando publicación Story para Instagram"_s));
    EXPECT_TRUE(told.contains(u"Enviando 1 imagen(es) a Instagram. Ya estaban pagadas."_s));
    EXPECT_EQ(studio->exportCurrent(), u"Exportado: una.png"_s);
    EXPECT_EQ(world.charged(), 450) << "what a publication paid is free to export";
    session().setText(CopySlot::title, u"Otro"_s);
    EXPECT_TRUE(
        turnUntil([this] { return publish().displayedPublishCosts().value(facebook) == 50; }));
}

TEST_F(StudioPublishTest, ASecondPostOfTheSameRendersWantsASecondPress)
{
    start();
    load(2);
    open();
    connect(instagram);
    publish().setPublishCaption(u"Uno"_s);
    EXPECT_EQ(published(instagram), u"Publicación enviada a Instagram. Coste: 100 créditos."_s);
    EXPECT_TRUE(publish().publishCaption().isEmpty()) << "it is published";
    const auto isToldOf = [this] {
        return std::ranges::any_of(publish().checks().found, [](const PublishCheck& check) {
            return check.kind == PublishCheckKind::published;
        });
    };
    EXPECT_TRUE(turnUntil(isToldOf));
    EXPECT_TRUE(published(instagram).startsWith(u"Ya se publicó el "_s));
    EXPECT_TRUE(publish().isConfirming());
    publish().setPublishCaption(u"Dos"_s);
    EXPECT_FALSE(publish().isConfirming()) << "it is another post";
    EXPECT_TRUE(published(instagram).startsWith(u"Ya se publicó el "_s));
    publish().choose(story);
    EXPECT_FALSE(isToldOf()) << "in another place";
    publish().choose(feed);
    EXPECT_TRUE(isToldOf());

    // Not known before rendering, as for a photo from an old batch.
    publish().closePublishWindow();
    EXPECT_TRUE(published(instagram).startsWith(u"Ya se publicó el "_s));
    EXPECT_TRUE(publish().isConfirming());
    // The next press confirms what was told, but not what is found only then.
    storeSendingRate(studio->preferences, 0.5);
    const QString more = published(instagram);
    EXPECT_TRUE(more.startsWith(u"Ya se publicó el "_s)) << qPrintable(more);
    EXPECT_TRUE(more.contains(u" A la velocidad del último envío "_s)) << qPrintable(more);
    EXPECT_EQ(publish().history().size(), 1);
    EXPECT_EQ(published(instagram), u"Publicación enviada a Instagram. Sin coste adicional."_s);
    EXPECT_EQ(publish().history().size(), 2);

    start();
    session().selectAll();
    publish().openPublishWindow();
    EXPECT_TRUE(turnUntil([this] { return !publish().isComparing(); }));
    EXPECT_TRUE(isToldOf());
}

TEST_F(StudioPublishTest, NoPictureIsLeftWhenTheProgramEndsWhilePublishing)
{
    FaultyProxy proxy(world.service.port());
    start(proxy.url());
    load(1);
    open();
    connect(facebook);
    publish().choose(facebook);
    proxy.spoil(publishTarget, Fault::lateAnswer);
    const QCoro::Task<> publishing = publish().preparePublish(facebook, feed);
    EXPECT_TRUE(turnUntil([this] {
        return publish().progress() &&
               publish().progress()->stage == PublishProgress::Stage::waiting;
    }));
    const auto folders = [this] {
        return QDir(world.file(u"espera"_s)).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    };
    EXPECT_EQ(folders().size(), 1);
    studio.reset();
    EXPECT_TRUE(folders().isEmpty());
}

TEST_F(StudioPublishTest, ARefusalAndASilenceAfterTheChargeGiveTheCreditsBack)
{
    struct Case {
        Fault fault;
        bool isPublished;    // the service published the post in spite of it
        bool isInDoubt;
    };
    FaultyProxy proxy(world.service.port());
    start(proxy.url(), {std::chrono::seconds(20), std::chrono::milliseconds(500)});
    load(1);
    open();
    connect(facebook);
    publish().choose(facebook);
    qsizetype inDoubt = 0;
    for (const Case& each :
         {Case{Fault::errorBefore, false, true}, Case{Fault::resetBefore, false, true},
          Case{Fault::resetAfter, true, true}, Case{Fault::lateAnswer, true, true}}) {
        publish().setPublishCaption(QString::number(int(each.fault)));
        if (inDoubt > 0)
            published(facebook);    // the first press only asks
        proxy.spoil(publishTarget, each.fault);
        const QString status = published(facebook);
        proxy.heal();
        inDoubt += each.isInDoubt;
        EXPECT_EQ(status.contains(u" Puede que se haya publicado."_s), each.isInDoubt)
            << qPrintable(status);
        EXPECT_TRUE(status.endsWith(u" Se han devuelto los 50 créditos."_s)) << qPrintable(status);
        EXPECT_EQ(session().status(), status);
        EXPECT_EQ(publish().history().size(), inDoubt);
        EXPECT_EQ(world.charged(), 0);
        EXPECT_EQ(publish().publishCaption(), QString::number(int(each.fault))) << "it is kept";
    }
    // The next press asks for the post that the service has made.
    EXPECT_EQ(published(facebook), u"Publicación enviada a Facebook. Coste: 50 créditos."_s);
    EXPECT_EQ(publish().history().size(), inDoubt);
    EXPECT_EQ(world.charged(), 50);
}

TEST_F(StudioPublishTest, WhatAnEndedRunLeftIsInDoubtAndTheEditedCaptionIsStillThere)
{
    start();
    load(1);
    open();
    connect(linkedIn);
    publish().choose(linkedIn);
    EXPECT_EQ(publish().captionOrigin().name, u"00"_s);
    publish().setPublishCaption(u"Texto propio 🍂"_s);
    publish().choose(instagram);
    EXPECT_EQ(publish().publishCaption(), GeneratedCopy::placeholder().publicationCaption);
    // The value of the record while the request is under way comes back, as after a crash.
    QByteArray value;
    QString key;
    studio->journal.stepReached = [&](const char* step) {
        if (QByteArrayView(step) != "noted")
            return;
        key = studio->preferences.keysBeginningWith(u"moltiva.publication."_s).value(0);
        value = *studio->preferences.value(key);
    };
    EXPECT_EQ(published(linkedIn), u"Publicación enviada a LinkedIn. Coste: 50 créditos."_s);
    publish().setPublishCaption(u"Otro propio"_s);
    studio->preferences.setValue(key, value);
    start();
    session().selectAll();
    open();
    ASSERT_EQ(publish().history().size(), 1);
    EXPECT_EQ(publish().history()[0].state, PublishRecord::State::unknown);
    EXPECT_EQ(publish().history()[0].caption, u"Texto propio 🍂"_s);
    publish().choose(linkedIn);
    EXPECT_EQ(publish().publishCaption(), u"Otro propio"_s);
    publish().closePublishWindow();
    EXPECT_EQ(publish().publishCaption(), u"Otro propio"_s);
    publish().choose(instagram);
    EXPECT_TRUE(publish().publishCaption().isEmpty()) << "it was not edited";
}

// What the user reads comes before the journal opens the entry of a charge.
TEST_F(StudioPublishTest, EveryBadPostIsToldBeforeAReservationIsSent)
{
    start();
    load(2);
    for (const auto network : allCases<SocialPublishNetwork>())
        connect(network);
    const auto photos = std::make_shared<PhotoCache>(world.file(u"miniaturas"_s));
    ChargeServices payment;
    payment.payments = [] { return Payments(); };
    payment.record = [](const QList<RenderedOutput>&, const Strike& strike) { return strike(); };
    RenderCosts costs(photos, &PayingStudio::smallSize);
    StudioPublish sheet(photos, &PayingStudio::smallSize, payment, costs, studio->preferences);
    sheet.setAccount(studio->account);
    sheet.setJournal(studio->journal, world.file(u"espera"_s));
    sheet.setService(studio->api);
    PublishRecords records(studio->preferences, studio->account.accountKey(),
                           studio->journal.programRun());
    for (const BadPost& bad : badPosts()) {
        SCOPED_TRACE(bad.label);
        PublishSubject post = ordinaryPost(2);
        bad.spoil(post);
        Batch batch;
        batch.format = post.format;
        for (PublicationItem& item : post.items) {
            item.image = session().batch().items[batch.items.size()].image;
            batch.items.append(item);
            batch.selectedItemIDs.insert(item.id);
        }
        if (post.published) {
            post.published->id = QUuid::createUuid();
            post.published->renders =
                fingerprintsOf(post.items, post.format, &PayingStudio::smallSize);
            records.keep(*post.published);
        }
        costs.scheduleRenderCostRefresh(batch, std::chrono::milliseconds(0));
        sheet.choose(post.network);
        sheet.choose(post.placement);
        sheet.setPublishCaption(post.caption);
        sheet.setTextWarnings(post.warnings);
        sheet.openPublishWindow();
        const auto isTold = [&] {
            return std::ranges::count(sheet.checks().found, bad.sentence,
                                      &PublishCheck::sentence) == 1;
        };
        EXPECT_TRUE(turnUntil(
            [&] { return isTold() && sheet.publishStatusKind() != StatusKind::working; }));
        int opened = 0;
        studio->journal.stepReached = [&, before = world.ledger().size()](const char* step) {
            if (QByteArrayView(step) != "opened")
                return;
            ++opened;
            EXPECT_TRUE(isTold());
            EXPECT_EQ(world.ledger().size(), before) << "nothing is reserved yet";
            sheet.stop();
        };
        awaited(sheet.preparePublish(post.network, post.placement));
        if (post.published) {
            EXPECT_EQ(opened, 0);
            EXPECT_EQ(sheet.publishStatus(), bad.sentence);
            awaited(sheet.preparePublish(post.network, post.placement));
            records.remove(post.published->id);
        }
        EXPECT_EQ(opened, 1);
        EXPECT_EQ(sheet.publishStatus(),
                  u"Publicación detenida. Se han devuelto los %1 créditos."_s.arg(
                      batch.items.size() * exportCreditCost));
        studio->journal.stepReached = {};
        sheet.closePublishWindow();
    }
    EXPECT_EQ(world.charged(), 0);
}

// Whichever comes first pays; the other one waits for it and has nothing left to pay.
TEST_F(StudioPublishTest, AnExportAndAPublicationAtOncePayEachRenderOnce)
{
    start();
    load(3);
    open();
    connect(instagram);
    int charged = 0;
    for (int i = 0; i < 30; ++i) {
        session().setText(CopySlot::title, QString::number(i));
        // The first of the two stops half way now and then, and is given back.
        const bool isStopped = i % 5 == 4;
        studio->journal.stepReached = [&, isDone = false](const char* step) mutable {
            if (isStopped && QByteArrayView(step) == "reserved" && !std::exchange(isDone, true))
                session().activities().stop(Activity::Kind::exporting);
        };
        QCoro::Task<> publishing;
        if (i % 2 == 0) {
            publishing = publish().preparePublish(instagram, feed);
            session().exportAll(world.file(u"salida"_s));
        } else {
            session().exportAll(world.file(u"salida"_s));
            publishing = publish().preparePublish(instagram, feed);
        }
        awaited(std::move(publishing));
        studio->ended();
        EXPECT_TRUE(publish().publishedPost()) << qPrintable(publish().publishStatus());
        charged += i == 0 ? 150 : 50;    // only one image is edited
        EXPECT_EQ(world.charged(), charged) << i;
    }
    studio->journal.stepReached = {};
    EXPECT_TRUE(studio->preferences.keysBeginningWith(u"moltiva.creditReservation."_s).isEmpty());
    EXPECT_EQ(studio->account.balance(), world.balance());
}

// Connections as scripted answers of the service.
class ConnectionsTest : public ::testing::Test {
protected:
    ConnectionsTest()
    {
        session.setAccountSession(account.session());
        session.setCreditJournal(account.journal(), folder.filePath(u"espera"_s));
        session.setPublishService(account.api());
        awaited(account.session().bootstrap());
    }
    StudioPublish& publish() { return session.publish(); }
    void scriptNetworks(const QByteArray& networks)
    {
        account.answer("GET /api/social/status", R"({"ok":true,"networks":[)" + networks + "]}");
    }
    static QByteArray network(const QByteArray& name, const QByteArray& state)
    {
        return R"({"network":")" + name + R"(","name":"N","provider":"meta",)" + state +
               R"(,"connectURL":"https://ejemplo.es/"})";
    }
    QString status()
    {
        awaited(publish().refreshSocialStatus());
        return publish().publishStatus();
    }
    QString connecting(SocialPublishNetwork network)
    {
        awaited(publish().connectSocialNetwork(network));
        return publish().publishStatus();
    }

    QTemporaryDir folder;
    PreferencesStore preferences{folder.filePath(u"p.sqlite"_s)};
    ScriptedAccount account{preferences, Scripted::signedIn};
    StudioSession session{std::make_shared<PhotoCache>(folder.filePath(u"m"_s)), preferences};
};

TEST_F(ConnectionsTest, TheStateOfTheNetworksIsTold)
{
    const QByteArray on = R"("isConnected":true)", off = R"("isConnected":false)";
    const QByteArray missing = off + R"(,"providerConfigured":false)";
    EXPECT_EQ(status(), u"No se han podido consultar las conexiones."_s);
    scriptNetworks(network("instagram", missing) + ',' + network("linkedin", missing));
    EXPECT_EQ(status(), u"2 red(es) pendiente(s) de activar en el servidor de Moltiva."_s);
    awaited(publish().preparePublish(linkedIn, feed));
    EXPECT_EQ(publish().publishStatus(),
              u"El publicador de LinkedIn todavía no está activado en el servidor de Moltiva."_s);
    scriptNetworks(network("instagram", off));
    EXPECT_EQ(status(), u"Conecta una red en localhost para poder publicar desde la app."_s);
    scriptNetworks(network("instagram", on) + ',' + network("facebook", missing));
    EXPECT_EQ(status(), u"1 red(es) conectada(s). Puedes publicar o conectar otra cuenta."_s);
    publish().openPublishWindow();
    EXPECT_EQ(publish().publishStatus(),
              u"Consultando conexiones de Instagram, Facebook y LinkedIn..."_s);
    EXPECT_TRUE(turnUntil([this] { return publish().publishStatusKind() == StatusKind::note; }));

    // The browser comes back: the networks are loaded again, and the sentence stays.
    scriptNetworks(network("instagram", on) + ',' + network("facebook", on));
    const QString before = publish().publishStatus();
    account.session().handleDeepLink(QUrl(u"moltiva://social-connected?status=ok"_s));
    EXPECT_TRUE(turnUntil([this] {
        const auto* connection = publish().connection(facebook);
        return connection && connection->isConnected;
    }));
    EXPECT_EQ(publish().publishStatus(), before);
    EXPECT_EQ(publish().connection(linkedIn), nullptr);

    // An answer that comes after the user has signed out is not about anybody.
    account.hold("GET /api/social/status");
    QCoro::Task<> loading = publish().refreshSocialConnectionsOnly();
    const auto asked = account.log().size();
    EXPECT_TRUE(turnUntil([&] { return account.log().size() > asked; }));
    account.answer("POST /api/auth/logout", R"({"ok":true})");
    EXPECT_TRUE(awaited(account.session().logout()));
    account.release();
    awaited(std::move(loading));
    EXPECT_EQ(publish().connection(instagram), nullptr);
}

TEST_F(ConnectionsTest, ANetworkIsConnectedInTheBrowserOrItIsToldWhyNot)
{
    constexpr auto token = "POST /api/social/connect-token";
    account.answer(token, R"({"ok":true,"url":"https://ejemplo.es/c/1","expiresInSeconds":60})");
    EXPECT_EQ(connecting(instagram),
              u"Abriendo localhost para conectar Instagram. El enlace caduca en unos minutos."_s);
    EXPECT_EQ(account.opened(), QList<QUrl>{QUrl(u"https://ejemplo.es/c/1"_s)});
    account.answer(token, R"({"ok":true,"url":"file:///etc/passwd","expiresInSeconds":60})");
    EXPECT_EQ(connecting(instagram), u"El servidor ha dado una dirección que no se puede abrir."_s);
    account.answer(token, R"({"error":"social_provider_not_configured"})", 409);
    EXPECT_EQ(connecting(instagram),
              u"Falta activar el publicador de esta red en el servidor de Moltiva."_s);
    EXPECT_EQ(account.opened().size(), 1);

    account.answer(token, R"({"error":"not_found"})", 404);
    EXPECT_EQ(connecting(linkedIn), u"Abriendo conexión básica en localhost."_s);
    ASSERT_EQ(account.opened().size(), 2);
    EXPECT_EQ(account.opened()[1].path(), u"/api/social/connect"_s);
    account.answer(token, R"({"error":"unauthorized"})", 401);
    EXPECT_EQ(connecting(facebook),
              u"Necesitas iniciar sesión en Moltiva antes de conectar Facebook"_s);
    awaited(publish().preparePublish(instagram, feed));
    EXPECT_EQ(publish().publishStatus(),
              u"Necesitas iniciar sesión en Moltiva antes de conectar Instagram"_s)
        << "a network that is not connected is connected first";
    EXPECT_EQ(account.opened().size(), 2);
}
