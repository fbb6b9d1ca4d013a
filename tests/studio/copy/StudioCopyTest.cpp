#include "tests/studio/copy/CopyStudio.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

class StudioCopyTest : public ::testing::Test, protected CopyStudio {
protected:
    StudioCopy& copy() { return session.copy(); }
    QString told() const { return session.status(); }
};

const QString placeholderTitle = GeneratedCopy::placeholder().title;

}    // namespace

TEST_F(StudioCopyTest, writesEachSelectedImageInTurnAndSaysHowFarItIs)
{
    copy().analyzeSelected();
    EXPECT_EQ(told(), u"Importa imágenes para analizarlas en local."_s);

    load({u"a"_s, u"b"_s, u"c"_s});
    session.setObjective(u"Vender"_s);
    session.selectAll();
    QStringList steps;
    QObject::connect(&copy(), &StudioCopy::working, &session,
                     [&](const QString& sentence) { steps.append(sentence); });
    copy().analyzeSelected();
    EXPECT_EQ(steps.value(0), u"Preparando Gemma 4 E2B local..."_s);
    ASSERT_TRUE(turnUntil([this] { return writer.isWriting(); }));
    EXPECT_EQ(told(), u"Generando con Gemma 1 de 3"_s);
    EXPECT_EQ(writer.calls.last()->objective, u"Vender"_s);
    EXPECT_EQ(copy().stateOf(session.batch().items[0].id), CopyState::generating);
    EXPECT_EQ(copy().stateOf(session.batch().items[1].id), CopyState::queued);
    EXPECT_TRUE(session.activities().find(Activity::Kind::generating));
    EXPECT_FALSE(session.activities().delayingClosing());

    session.setObjective(u"Regalar"_s);
    session.setFormat(SocialFormat::square);
    answer(u"1"_s);
    EXPECT_EQ(title(0), u"Título 1"_s);
    EXPECT_EQ(caption(0), u"Pie 1"_s);
    EXPECT_EQ(copy().stateOf(session.batch().items[0].id), CopyState::generated);
    EXPECT_EQ(told(), u"Generando con Gemma 2 de 3"_s);
    EXPECT_EQ(writer.calls.last()->objective, u"Regalar"_s) << "read as each image begins";
    EXPECT_EQ(writer.calls.last()->format, SocialFormat::square);
    answer(u"2"_s);
    answer(u"3"_s);
    EXPECT_FALSE(session.isAnalyzing());
    EXPECT_FALSE(session.activities().find(Activity::Kind::generating));
    EXPECT_EQ(told(), u"Textos generados para 3 imagen(es)."_s);
    EXPECT_FALSE(session.batch().items[0].layers[2].isVisible) << "a hidden text stays hidden";
    EXPECT_EQ(text(0, CopySlot::tagline), u"Párrafo 1"_s);

    PreferencesStore other(folder.filePath(u"p.sqlite"_s));
    EXPECT_TRUE(WorkspaceStore::stored(other)->contains("Título 3")) << "the run is stored";
}

TEST_F(StudioCopyTest, startsNothingWhileTheEngineIsNotReady)
{
    load({u"a"_s});
    writer.notReady = u"No instalado. Descarga: 3,40 GB."_s;
    EXPECT_EQ(copy().whyNotGenerate(), writer.notReady);
    copy().analyzeSelected();
    EXPECT_FALSE(session.isAnalyzing());
    EXPECT_EQ(told(), writer.notReady);
    EXPECT_TRUE(writer.calls.isEmpty());
}

TEST_F(StudioCopyTest, resultsOfARunAreOneStepAndStayTakenBack)
{
    load({u"a"_s, u"b"_s, u"c"_s});
    session.selectAll();
    copy().analyzeSelected();
    answer(u"1"_s);
    answer(u"2"_s);
    session.selectSingleIndex(1);    // selecting is no edit
    undo();
    EXPECT_EQ(titles(), QStringList(3, placeholderTitle));
    EXPECT_TRUE(session.canRedo());

    answer(u"3"_s);
    EXPECT_EQ(titles(), (QStringList{placeholderTitle, placeholderTitle, u"Título 3"_s}))
        << "what was taken back is not applied again";
    EXPECT_EQ(told(), u"Textos generados para 3 imagen(es)."_s);
    undo();
    EXPECT_EQ(titles(), QStringList(3, placeholderTitle));
}

TEST_F(StudioCopyTest, resultsWaitForGesturesTypingAndWhatCanBeRedone)
{
    load({u"a"_s, u"b"_s, u"c"_s, u"d"_s});
    session.selectAll();
    copy().analyzeSelected();
    session.beginCanvasHistoryEdit();
    answer(u"1"_s);
    EXPECT_EQ(title(0), placeholderTitle);
    EXPECT_EQ(copy().waiting(), 1);
    EXPECT_EQ(copy().stateOf(session.batch().items[0].id), CopyState::waiting);
    EXPECT_EQ(copy().whyWaiting(), u"Se aplicarán cuando termines de escribir."_s);
    session.endCanvasHistoryEdit({});
    EXPECT_TRUE(turnUntil([this] { return title(0) == u"Título 1"_s; }))
        << "a gesture that changes nothing sends no signal, and still lets them go";

    session.selectSingleIndex(3);
    session.setText(CopySlot::subtitle, u"Escribo"_s);
    answer(u"2"_s);
    EXPECT_EQ(title(1), placeholderTitle);
    now += std::chrono::milliseconds(700);
    int shown = 0;
    const auto counting =
        QObject::connect(&copy(), &StudioCopy::changed, &session, [&shown] { ++shown; });
    for (int attempts = 0; attempts < 3; ++attempts)
        copy().applyWaiting();
    QObject::disconnect(counting);
    EXPECT_EQ(shown, 0) << "attempts that change nothing show nothing";
    EXPECT_EQ(title(1), placeholderTitle) << "another key may still join";
    rest();
    EXPECT_EQ(title(1), u"Título 2"_s);

    undo();    // result 2
    undo();    // the typing
    answer(u"3"_s);
    EXPECT_EQ(copy().waiting(), 1);
    EXPECT_EQ(copy().whyWaiting(),
              u"Se aplicarán con tu próximo cambio o al terminar: hay un cambio que se puede "
              "rehacer."_s);
    EXPECT_TRUE(session.canRedo());
    write(0, CopySlot::subtitle, u"Otra cosa"_s);
    EXPECT_EQ(title(2), u"Título 3"_s) << "applied with the next change";

    session.setTyping(true);
    answer(u"4"_s);
    EXPECT_TRUE(session.isAnalyzing()) << "the end of the run waits as well";
    session.setTyping(false);
    EXPECT_TRUE(turnUntil([this] { return !session.isAnalyzing(); }));
    EXPECT_EQ(title(3), u"Título 4"_s);
    EXPECT_EQ(text(0, CopySlot::subtitle), u"Otra cosa"_s);
    EXPECT_EQ(told(), u"Textos generados para 4 imagen(es)."_s);
}

TEST_F(StudioCopyTest, whatWaitsIsAppliedBeforeTheProgramEnds)
{
    load({u"a"_s, u"b"_s});
    session.selectAll();
    copy().analyzeSelected();
    session.setTyping(true);
    answer(u"1"_s);
    EXPECT_EQ(title(0), placeholderTitle);
    copy().applyBeforeEnd();
    EXPECT_EQ(titles(), (QStringList{u"Título 1"_s, placeholderTitle}));
}

TEST_F(StudioCopyTest, theObjectiveThatIsStillTypedAndTheEngineOfTheUserCount)
{
    load({u"a"_s});
    writer.engineName = u"gemma-3-12b-it"_s;
    QObject::connect(&copy(), &StudioCopy::starting, &session,
                     [this] { session.setObjective(u"Recién escrito"_s); });
    QStringList steps;
    bool wasStopping = false;
    QObject::connect(&copy(), &StudioCopy::working, &session, [&](const QString& sentence) {
        steps.append(sentence);
        wasStopping = copy().isStopping();
    });
    copy().proposeAnother(session.batch().items[0].id, CopySlot::title);
    ASSERT_TRUE(turnUntil([this] { return writer.isWriting(); }));
    EXPECT_EQ(writer.calls.last()->objective, u"Recién escrito"_s);
    EXPECT_EQ(steps, (QStringList{u"Preparando gemma-3-12b-it local..."_s,
                                  u"Generando con gemma-3-12b-it 1 de 1"_s}));
    copy().cancel();
    EXPECT_EQ(steps.last(), u"Deteniendo la generación…"_s);
    EXPECT_TRUE(wasStopping);
    EXPECT_TRUE(turnUntil([this] { return !session.isAnalyzing(); }));
}

TEST_F(StudioCopyTest, ownTextsThatWereReplacedComeBackInOneStep)
{
    load({u"a"_s, u"b"_s});
    write(0, CopySlot::title, u"Mi título"_s);
    write(1, CopySlot::tagline, u"Mi párrafo"_s);
    session.selectSingleIndex(1);
    session.setCaption(u"Mi pie"_s);
    rest();
    generateAll();
    EXPECT_EQ(title(0), u"Título 1"_s);
    EXPECT_EQ(caption(1), u"Pie 2"_s);
    EXPECT_EQ(told(), u"Textos generados para 2 imagen(es). 3 textos tuyos sustituidos."_s);
    EXPECT_EQ(actions(), QList{StatusAction::recoverTexts});

    write(1, CopySlot::subtitle, u"Después"_s);
    EXPECT_EQ(actions(), QList{StatusAction::recoverTexts}) << "the offer outlives an edit";
    session.act(StatusAction::recoverTexts);
    EXPECT_EQ(title(0), u"Mi título"_s);
    EXPECT_EQ(text(1, CopySlot::tagline), u"Mi párrafo"_s);
    EXPECT_EQ(caption(1), u"Mi pie"_s);
    EXPECT_EQ(title(1), u"Título 2"_s);
    EXPECT_EQ(told(), u"3 textos tuyos recuperados."_s);
    undo();
    EXPECT_EQ(titles(), (QStringList{u"Título 1"_s, u"Título 2"_s}));
    EXPECT_EQ(text(1, CopySlot::subtitle), u"Después"_s);

    generateAll();
    EXPECT_EQ(told(), u"Textos generados para 2 imagen(es). 1 texto tuyo sustituido."_s)
        << "a generated text is nobody's own";
}

TEST_F(StudioCopyTest, whatIsEditedDuringTheRunIsKeptUnlessAskedFor)
{
    load({u"a"_s});
    copy().analyzeSelected();
    ASSERT_TRUE(turnUntil([this] { return writer.isWriting(); }));
    write(0, CopySlot::title, u"Mejor así"_s);
    session.setCaption(u"Pie mío"_s);
    rest();
    answer(u"1"_s);
    EXPECT_EQ(title(0), u"Mejor así"_s);
    EXPECT_EQ(caption(0), u"Pie mío"_s);
    EXPECT_EQ(text(0, CopySlot::subtitle), u"Subtítulo 1"_s);
    EXPECT_EQ(told(), u"Textos generados para 1 imagen(es). 2 textos que editaste se conservan."_s);
    EXPECT_EQ(actions(), QList{StatusAction::replaceEdited});
    session.act(StatusAction::replaceEdited);
    EXPECT_EQ(title(0), u"Título 1"_s);
    EXPECT_EQ(caption(0), u"Pie 1"_s);
    EXPECT_EQ(told(), u"2 textos que editaste sustituidos."_s);
    undo();
    EXPECT_EQ(title(0), u"Mejor así"_s);
}

TEST_F(StudioCopyTest, missingAnswersLandOnTheirImageAndCanBeRetried)
{
    load({u"a"_s, u"b"_s, u"c"_s});
    write(1, CopySlot::title, u"Mi título"_s);
    session.selectAll();
    copy().analyzeSelected();
    answer(u"1"_s);
    answer(ScriptedWriter::missing());
    answer(u"3"_s);
    EXPECT_EQ(title(1), u"Gemma no respondió"_s);
    EXPECT_EQ(told(),
              u"Textos generados para 2 imagen(es). 1 texto tuyo sustituido. 1 sin respuesta."_s);
    const QUuid failed = session.batch().items[1].id;
    EXPECT_EQ(copy().stateOf(failed), CopyState::unanswered);
    EXPECT_EQ(copy().whyUnanswered(failed),
              u"No se ha podido iniciar Gemma 4 E2B local desde la app."_s);
    EXPECT_EQ(actions(), (QList{StatusAction::retryCopy, StatusAction::recoverTexts}));

    session.act(StatusAction::retryCopy);
    answer(u"otra vez"_s);
    EXPECT_EQ(title(1), u"Título otra vez"_s);
    EXPECT_EQ(told(), u"Textos generados para 1 imagen(es). 1 texto tuyo sustituido."_s);
    session.act(StatusAction::recoverTexts);
    EXPECT_EQ(title(1), u"Mi título"_s) << "what the record replaced is not forgotten";
}

TEST_F(StudioCopyTest, threeMissingAnswersInARowStopTheRun)
{
    load({u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s, u"f"_s});
    session.selectAll();
    copy().analyzeSelected();
    answer(ScriptedWriter::missing());
    answer(u"2"_s);
    for (int i = 0; i < 3; ++i)
        answer(ScriptedWriter::missing());
    EXPECT_FALSE(session.isAnalyzing());
    EXPECT_EQ(told(), u"Textos generados para 1 imagen(es). 4 sin respuesta. El motor falló tres "
                      "veces seguidas."_s);
    EXPECT_EQ(session.statusLog().current().kind, StatusKind::error);
    EXPECT_EQ(copy().stateOf(session.batch().items[5].id), CopyState::none);
    session.act(StatusAction::retryCopy);
    EXPECT_EQ(copy().total(), 5) << "those that failed and the one not reached";
}

TEST_F(StudioCopyTest, cancelEndsTheEngineAndKeepsWhatIsThere)
{
    load({u"a"_s, u"b"_s, u"c"_s});
    session.selectAll();
    copy().analyzeSelected();
    answer(u"1"_s);
    session.activities().stop(Activity::Kind::generating);
    EXPECT_TRUE(turnUntil([this] { return !session.isAnalyzing(); }));
    EXPECT_FALSE(writer.isWriting());
    EXPECT_EQ(titles(), (QStringList{u"Título 1"_s, placeholderTitle, placeholderTitle}));
    EXPECT_EQ(told(), u"Generación cancelada. Textos generados para 1 imagen(es)."_s);
    EXPECT_EQ(copy().stateOf(session.batch().items[1].id), CopyState::none);
    EXPECT_TRUE(actions().isEmpty());
}

TEST_F(StudioCopyTest, imagesThatAreGoneAreNeitherGeneratedNorMixedUp)
{
    load({u"a"_s, u"b"_s, u"c"_s, u"d"_s});
    session.selectAll();
    copy().analyzeSelected();
    ASSERT_TRUE(turnUntil([this] { return writer.isWriting(); }));
    session.removeItem(session.batch().items[0].id);    // it is being generated
    session.removeItem(session.batch().items[0].id);    // it is queued
    rest();
    answer(u"a"_s);
    EXPECT_EQ(writer.calls.last()->photo.fileName(), u"c.png"_s);
    undo();
    EXPECT_EQ(titles(), QStringList(4, placeholderTitle)) << "there is something to redo";
    ASSERT_TRUE(QFile::remove(folder.filePath(u"d.png"_s)));
    answer(u"c"_s);
    EXPECT_TRUE(turnUntil([this] { return !session.isAnalyzing(); }));
    EXPECT_EQ(writer.calls.size(), 2) << "no engine is started for a missing photo";
    EXPECT_EQ(titles(),
              (QStringList{u"Título a"_s, placeholderTitle, u"Título c"_s, placeholderTitle}));
    EXPECT_EQ(told(), u"Textos generados para 2 imagen(es). No se puede leer la foto «d»."_s);
}

TEST_F(StudioCopyTest, anotherProposalWritesItsTextAlone)
{
    load({u"a"_s});
    generateAll();
    copy().proposeAnother(session.batch().items[0].id, CopySlot::tagline);
    answer(u"nuevo"_s);
    EXPECT_EQ(text(0, CopySlot::tagline), u"Párrafo nuevo"_s);
    EXPECT_EQ(title(0), u"Título 1"_s);
    EXPECT_EQ(caption(0), u"Pie 1"_s);
    EXPECT_EQ(told(), u"Nueva propuesta para Párrafo."_s);
    copy().proposeAnother(session.batch().items[0].id, CopySlot::title);
    answer(ScriptedWriter::missing());
    EXPECT_EQ(title(0), u"Título 1"_s);
    EXPECT_EQ(told(), ScriptedWriter::missing().subtitle);
}

TEST_F(StudioCopyTest, captionsAreUndoneAndStoredLikeTexts)
{
    load({u"a"_s});
    session.setCaption(u"Mi pie"_s);
    rest();
    EXPECT_TRUE(session.batch().items[0].isCaptionOwn);
    EXPECT_TRUE(WorkspaceStore::stored(preferences)->contains("\"isCaptionOwn\":true"));
    undo();
    EXPECT_EQ(caption(0), GeneratedCopy::placeholder().publicationCaption);
    EXPECT_FALSE(session.batch().items[0].isCaptionOwn);
    session.redo();
    EXPECT_EQ(caption(0), u"Mi pie"_s);

    StudioSession next(std::make_shared<PhotoCache>(folder.filePath(u"cache"_s)), preferences);
    next.restoreWorkspaceIfNeeded();
    ASSERT_TRUE(turnUntil([&] { return next.didRestoreWorkspace(); }));
    EXPECT_EQ(next.batch().items[0].analysis.publicationCaption, u"Mi pie"_s);
    EXPECT_TRUE(next.batch().items[0].isCaptionOwn);
}

TEST_F(StudioCopyTest, aSessionThatEndsEndsItsEngine)
{
    auto ending = std::make_unique<StudioSession>(
        std::make_shared<PhotoCache>(folder.filePath(u"cache"_s)), preferences);
    ending->setLocalCopyWriter(writer.functions());
    ending->restoreWorkspaceIfNeeded();
    ASSERT_TRUE(turnUntil([&] { return ending->didRestoreWorkspace(); }));
    ending->load({photo(u"a"_s)});
    ASSERT_TRUE(turnUntil([&] { return !ending->isImporting(); }));
    ending->copy().analyzeSelected();
    ASSERT_TRUE(turnUntil([this] { return writer.isWriting(); }));
    ending.reset();
    EXPECT_FALSE(writer.isWriting());
}
