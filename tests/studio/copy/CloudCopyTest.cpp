#include "studio/copy/CopyOutcome.h"
#include "tests/studio/PayingStudio.h"
#include "tests/support/StandInProvider.h"

using namespace Qt::StringLiterals;

namespace {

class CloudCopyTest : public ::testing::Test {
protected:
    CloudCopyTest()
    {
        world.service.provider = {provider.address(), {}, u"modelo"_s};
        begin();
        studio->signIn();
        studio->load({world.photo(u"a.png"_s), world.photo(u"b.png"_s, Qt::red),
                      world.photo(u"c.png"_s, Qt::green)});
    }

    // Starts the program, again if it ran before.
    void begin()
    {
        studio.reset();
        studio = std::make_unique<PayingStudio>(world);
        studio->session.setCloudCopyService({&studio->api});
        studio->session.setGenerationMode(CopyGenerationMode::cloud);
    }
    StudioSession& session() { return studio->session; }
    QString generate()
    {
        session().copy().analyzeSelected();
        EXPECT_TRUE(turnUntil([this] { return !session().isAnalyzing(); }));
        return session().status();
    }
    bool isAsked(int times)
    {
        return turnUntil([&] { return provider.asked() >= times; });
    }
    QStringList titles()
    {
        QStringList all;
        for (const PublicationItem& item : session().batch().items)
            all.append(item.layers[0].text);
        return all;
    }
    // "reserve 1", "refund 1", …: the requests in the order of their first entry.
    QStringList ledger()
    {
        QStringList requests, moves;
        for (const PayingWorld::Entry& entry : world.ledger(u"%-%-%"_s)) {
            if (!requests.contains(entry.requestId))
                requests.append(entry.requestId);
            moves.append(u"%1 %2 (%3)"_s.arg(entry.kind)
                             .arg(requests.indexOf(entry.requestId) + 1)
                             .arg(entry.amount));
        }
        return moves;
    }
    QStringList entries() { return studio->preferences.keysBeginningWith(u"moltiva.credit"_s); }
    QStringList paidCopies()
    {
        return studio->preferences.keysBeginningWith(u"moltiva.paidCopy"_s);
    }

    StandInProvider provider;
    PayingWorld world;
    std::unique_ptr<PayingStudio> studio;
};

const QString placeholder = GeneratedCopy::placeholder().title;

}    // namespace

TEST_F(CloudCopyTest, everyImageIsPaidUnderARequestOfItsOwnAndStored)
{
    session().selectAll();
    EXPECT_EQ(session().copy().cost(), 30);
    const qint64 balance = world.balance();
    QStringList steps;
    QObject::connect(&session().copy(), &StudioCopy::working, &session(),
                     [&](const QString& sentence) { steps.append(sentence); });
    EXPECT_EQ(generate(), u"Textos generados para 3 imagen(es). Coste: 30 créditos."_s);
    EXPECT_EQ(steps.mid(0, 3), (QStringList{u"Reservando 10 créditos..."_s,
                                            u"Generando textos con IA en la nube..."_s,
                                            u"Textos generados en nube. Coste: 10 créditos."_s}));
    EXPECT_EQ(titles(), (QStringList{u"T-1."_s, u"T-2."_s, u"T-3."_s}));
    EXPECT_EQ(ledger(),
              (QStringList{u"reserve 1 (-10)"_s, u"reserve 2 (-10)"_s, u"reserve 3 (-10)"_s}));
    EXPECT_EQ(studio->account.balance(), balance - 30);
    EXPECT_EQ(studio->account.message(), u"Cuenta actualizada."_s) << "refreshed at the end";
    EXPECT_TRUE(entries().isEmpty());
    EXPECT_TRUE(paidCopies().isEmpty());

    session().selectSingleIndex(0);
    EXPECT_EQ(generate(), u"Textos generados en nube. Coste: 10 créditos."_s);
    EXPECT_EQ(ledger().value(3), u"reserve 4 (-10)"_s) << "a fresh identifier each time";
    begin();
    EXPECT_EQ(titles(), (QStringList{u"T-4."_s, u"T-2."_s, u"T-3."_s}));
}

TEST_F(CloudCopyTest, whatStopsARunBeforeItCostsAnything)
{
    session().selectAll();
    world.leaveCredits(29);
    awaited(studio->account.refreshSilently());
    EXPECT_EQ(generate(), u"Necesitas 30 créditos para generar 3 imagen(es)."_s);
    EXPECT_TRUE(session().statusLog().current().link.isPurchase);
    EXPECT_TRUE(session().statusLog().current().link.actions.isEmpty());
    awaited(studio->account.logout());
    EXPECT_EQ(generate(), u"Necesitas iniciar sesión."_s);
    EXPECT_TRUE(ledger().isEmpty());
    EXPECT_EQ(provider.asked(), 0);
}

TEST_F(CloudCopyTest, failuresAreGivenBackAndThreeInARowStop)
{
    provider.set(StandInProvider::Mode::wrong);
    const QString failed = generate();
    EXPECT_TRUE(failed.endsWith(u" Se han devuelto los 10 créditos."_s)) << failed.toStdString();
    EXPECT_FALSE(failed.startsWith(u"Textos"_s)) << failed.toStdString();
    EXPECT_EQ(ledger(), (QStringList{u"reserve 1 (-10)"_s, u"refund 1 (10)"_s}));
    EXPECT_EQ(titles().value(0), placeholder);
    const QUuid item = session().batch().items[0].id;
    EXPECT_EQ(session().copy().stateOf(item), CopyState::unanswered);
    EXPECT_EQ(session().copy().whyUnanswered(item), failed);

    provider.set(StandInProvider::Mode::failing);
    session().selectAll();
    const QString stopped = generate();
    EXPECT_TRUE(stopped.endsWith(u"La nube falló tres veces seguidas."_s)) << stopped.toStdString();
    EXPECT_EQ(session().statusLog().current().link.actions, QList{StatusAction::retryCopy});
    provider.set(StandInProvider::Mode::good);
    session().act(StatusAction::retryCopy);
    EXPECT_TRUE(turnUntil([this] { return !session().isAnalyzing(); }));
    EXPECT_EQ(session().status(), u"Textos generados para 3 imagen(es). Coste: 30 créditos."_s);
    EXPECT_TRUE(entries().isEmpty());
}

TEST_F(CloudCopyTest, cancellingAndRemovingGiveTheImageInCourseBack)
{
    provider.set(StandInProvider::Mode::held);
    session().selectAll();
    session().copy().analyzeSelected();
    ASSERT_TRUE(isAsked(1));
    EXPECT_TRUE(session().activities().delayingClosing());
    session().activities().stop(Activity::Kind::generating);
    EXPECT_TRUE(turnUntil([this] { return !session().isAnalyzing(); }))
        << "the provider has not answered yet";
    EXPECT_EQ(session().status(), u"Generación cancelada. Textos generados para 0 imagen(es)."_s);
    EXPECT_EQ(ledger(), (QStringList{u"reserve 1 (-10)"_s, u"refund 1 (10)"_s}));

    session().selectSingleIndex(0);
    session().copy().analyzeSelected();
    ASSERT_TRUE(isAsked(2));
    session().removeItem(session().batch().items[0].id);
    provider.set(StandInProvider::Mode::good);
    EXPECT_TRUE(turnUntil([this] { return !session().isAnalyzing(); }));
    EXPECT_EQ(session().status(), u"«a» ya no está en el lote. Se han devuelto los 10 créditos."_s);
    EXPECT_EQ(ledger().mid(2), (QStringList{u"reserve 2 (-10)"_s, u"refund 2 (10)"_s}));
    EXPECT_TRUE(paidCopies().isEmpty());
}

TEST_F(CloudCopyTest, aPaidTextThatWaitsSurvivesTheEndOfTheProgram)
{
    session().setText(CopySlot::subtitle, u"Mío"_s);
    session().undo();    // what can be redone makes results wait
    session().selectAll();
    provider.set(StandInProvider::Mode::held);
    session().copy().analyzeSelected();
    ASSERT_TRUE(isAsked(1));
    session().beginCanvasHistoryEdit();
    provider.set(StandInProvider::Mode::good);
    ASSERT_TRUE(turnUntil([this] { return session().copy().waiting() == 3; }));
    EXPECT_EQ(titles(), QStringList(3, placeholder));
    EXPECT_TRUE(entries().isEmpty());
    begin();
    EXPECT_EQ(titles(), (QStringList{u"T-1."_s, u"T-2."_s, u"T-3."_s}));
    EXPECT_TRUE(session().status().contains(u"ya estaban pagados"_s));
    EXPECT_TRUE(paidCopies().isEmpty());
    EXPECT_EQ(ledger().size(), 3) << "nothing is given back";
    begin();
    EXPECT_EQ(titles(), (QStringList{u"T-1."_s, u"T-2."_s, u"T-3."_s})) << "they are stored";
}

TEST_F(CloudCopyTest, aPaidTextComesBackWithItsImage)
{
    session().selectSingleIndex(0);
    const QUuid item = session().batch().items[0].id;
    provider.set(StandInProvider::Mode::held);
    session().copy().analyzeSelected();
    ASSERT_TRUE(isAsked(1));
    session().beginCanvasHistoryEdit();
    provider.set(StandInProvider::Mode::good);
    ASSERT_TRUE(turnUntil([this] { return session().copy().waiting() == 1; }));
    session().removeItem(item);
    session().endCanvasHistoryEdit({});
    ASSERT_TRUE(turnUntil([this] { return !session().isAnalyzing(); }));
    EXPECT_TRUE(session().status().contains(u"se guarda por si recuperas la imagen"_s))
        << session().status().toStdString();
    EXPECT_EQ(paidCopies().size(), 1);

    session().undo();
    ASSERT_EQ(session().batch().items[0].id, item);
    QCoreApplication::processEvents();    // the undo has ended
    session().setObjective(u"otro"_s);    // nothing can be redone any more
    EXPECT_TRUE(turnUntil([this] { return titles().value(0) == u"T-1."_s; }));
    EXPECT_TRUE(paidCopies().isEmpty());
    EXPECT_EQ(ledger().size(), 1) << "paid once";
}

TEST_F(CloudCopyTest, aNewerTextReplacesAPaidOneThatHasNotComeBack)
{
    session().selectSingleIndex(0);
    const QUuid item = session().batch().items[0].id;
    provider.set(StandInProvider::Mode::held);
    session().copy().analyzeSelected();
    ASSERT_TRUE(isAsked(1));
    session().beginCanvasHistoryEdit();
    provider.set(StandInProvider::Mode::good);
    ASSERT_TRUE(turnUntil([this] { return session().copy().waiting() == 1; }));
    session().removeItem(item);
    session().endCanvasHistoryEdit({});
    ASSERT_TRUE(turnUntil([this] { return !session().isAnalyzing(); }));
    session().undo();
    session().selectItem(0, {});

    provider.set(StandInProvider::Mode::held);
    session().copy().analyzeSelected();
    ASSERT_TRUE(isAsked(2));
    session().beginCanvasHistoryEdit();
    provider.set(StandInProvider::Mode::good);
    ASSERT_TRUE(turnUntil([this] { return session().copy().waiting() == 1; }));
    EXPECT_EQ(paidCopies().size(), 1);
    session().endCanvasHistoryEdit({});
    ASSERT_TRUE(turnUntil([this] { return !session().isAnalyzing(); }));
    EXPECT_EQ(session().status(), u"Textos generados en nube. Coste: 10 créditos."_s);
    session().setObjective(u"otro"_s);    // nothing can be redone any more
    QCoreApplication::processEvents();
    EXPECT_EQ(titles().value(0), u"T-2."_s);
    EXPECT_TRUE(paidCopies().isEmpty());
    begin();
    EXPECT_EQ(titles().value(0), u"T-2."_s);
}

TEST(PaidCopies, whatAFailedSaveCallsLateLeavesANewerCopy)
{
    const QTemporaryDir folder;
    PreferencesStore preferences(folder.filePath(u"preferences.sqlite"_s));
    PaidCopies paid(preferences);
    Batch batch;
    batch.items.append(PublicationItem::make(QUrl::fromLocalFile(u"/a.png"_s), {}));
    const QUuid item = batch.items[0].id;
    const auto copyOf = [&](const QString& title) {
        PaidCopy copy{GeneratedCopy::placeholder(), textsOf(batch.items[0]), {}};
        copy.copy.title = title;
        return copy;
    };
    const Strike strike = [] { return true; };
    const Strike first = paid.keeping(item, copyOf(u"Uno"_s), strike);
    const Strike removal = paid.removal({item});
    EXPECT_TRUE(paid.store(paid.keeping(item, copyOf(u"Dos"_s), strike)));
    EXPECT_TRUE(paid.store(first));
    EXPECT_TRUE(paid.store(removal));
    paid.removeOthers({}, PaidCopies::Others::mayReturn);
    EXPECT_EQ(paid.applyTo(batch), QList{item});
    EXPECT_EQ(batch.items[0].analysis.title, u"Dos"_s);
    paid.removeOthers({}, PaidCopies::Others::areGone);
    EXPECT_TRUE(paid.items().isEmpty());
}

TEST(CopyOutcome, sentences)
{
    using State = CopyOutcome::State;
    const auto cloud = CopyGenerationMode::cloud;
    struct Row {
        CopyOutcome outcome;
        QString sentence;
    };
    const QList<Row> rows{
        {{.images = 6, .written = 6}, u"Textos generados para 6 imagen(es)."_s},
        {{.state = State::cancelled, .images = 6, .written = 2},
         u"Generación cancelada. Textos generados para 2 imagen(es)."_s},
        {{.images = 16, .written = 16, .replaced = 3},
         u"Textos generados para 16 imagen(es). 3 textos tuyos sustituidos."_s},
        {{.images = 16, .written = 16, .replaced = 1, .kept = 2},
         u"Textos generados para 16 imagen(es). 1 texto tuyo sustituido. 2 textos que editaste se "
         "conservan."_s},
        {{.images = 16, .written = 14, .unanswered = 2},
         u"Textos generados para 14 imagen(es). 2 sin respuesta."_s},
        {{.state = State::failing,
          .images = 9,
          .written = 4,
          .unanswered = 3,
          .isThreeInRow = true},
         u"Textos generados para 4 imagen(es). El motor falló tres veces seguidas."_s},
        {{.mode = cloud, .images = 1, .written = 1, .cost = 10},
         u"Textos generados en nube. Coste: 10 créditos."_s},
        {{.mode = cloud, .images = 2, .written = 2, .cost = 20},
         u"Textos generados para 2 imagen(es). Coste: 20 créditos."_s},
        {{.mode = cloud, .images = 1, .unanswered = 1, .reason = u"No va."_s}, u"No va."_s},
        {{.state = State::failing,
          .mode = cloud,
          .images = 3,
          .written = 1,
          .unanswered = 1,
          .cost = 10,
          .reason = u"No tienes créditos suficientes."_s},
         u"Textos generados para 1 imagen(es). Coste: 10 créditos. No tienes créditos "
         "suficientes."_s},
        {{.state = State::refused, .images = 3, .reason = u"No instalado."_s}, u"No instalado."_s},
        {{.images = 1, .written = 1, .slot = u"Título"_s}, u"Nueva propuesta para Título."_s},
    };
    for (const Row& row : rows)
        EXPECT_EQ(row.outcome.sentence().toStdString(), row.sentence.toStdString());
}
