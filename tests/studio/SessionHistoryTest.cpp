#include "platform/PreferencesStore.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"
#include "studio/TextTransfer.h"
#include "studio/sheet/TextSheet.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QSemaphore>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// Tests of the session with its history and its stored workspace.

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString workspaceKey = u"moltiva.workspaceSnapshot"_s;
const QString asideKey = u"moltiva.workspaceSnapshot.setAside"_s;

class SessionHistoryTest : public ::testing::Test {
protected:
    SessionHistoryTest()
    {
        session = opened();
        load(3);
    }
    std::unique_ptr<StudioSession> opened()
    {
        auto made = std::make_unique<StudioSession>(m_photos, preferences, [this] { return now; });
        made->restoreWorkspaceIfNeeded();
        EXPECT_TRUE(waitFor([&] { return made->didRestoreWorkspace(); }));
        return made;
    }
    void load(int count)
    {
        QList<QUrl> urls;
        for (int i = 0; i < count; ++i) {
            QImage image(64, 48, QImage::Format_RGB32);
            image.fill(QColor::fromHsv(40 * i, 200, 200));
            EXPECT_TRUE(image.save(file(i)));
            urls.append(QUrl::fromLocalFile(file(i)));
        }
        now += 10s;
        session->load(urls);
        EXPECT_TRUE(waitFor([&] { return !session->isImporting(); }));
        now += 10s;
    }
    QString file(int index) const { return m_folder.filePath(u"%1.png"_s.arg(index)); }
    template <typename Done>
    bool waitFor(Done done)
    {
        QElapsedTimer watch;
        for (watch.start(); !done() && watch.elapsed() < 20000;)
            QGuiApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
        return done();
    }
    // The batch that another start of the program would restore.
    Batch stored() { return opened()->batch(); }
    const Batch& batch() const { return session->batch(); }
    TextLayer title() const { return batch().currentItem()->layers[0]; }
    void restyle(double scale, Pace pace = Pace::once)
    {
        TextLayer layer = title();
        layer.fontScale = scale;
        session->editLayer(layer, LayerEdits::Copied::style, pace);
    }
    // Undoes and runs the next turn of the event loop, in which the undo ends.
    void undo()
    {
        session->undo();
        QGuiApplication::processEvents();
    }
    void redo()
    {
        session->redo();
        QGuiApplication::processEvents();
    }

    QTemporaryDir m_folder, m_data;
    std::shared_ptr<PhotoCache> m_photos = std::make_shared<PhotoCache>(m_data.path());
    PreferencesStore preferences{m_data.filePath(u"p.sqlite"_s)};
    StudioHistory::Time now{};
    // Marks the item's render as paid. `fingerprint` stands for its properties as well as its
    // pixels.
    void markPaid(QUuid item, const QString& fingerprint)
    {
        RenderedOutput output{{}, {}, fingerprint, fingerprint};
        output.item.id = item;
        session->markRenderedOutputsAsPaid({output}, {});
    }

    std::unique_ptr<StudioSession> session;
};

}    // namespace

TEST_F(SessionHistoryTest, eachKindOfChangeIsTakenBackWithItsSelection)
{
    const Batch imported = batch();
    session->selectAll();    // not a step, but part of what undoing restyle() restores
    const Batch selected = batch();
    restyle(1.5);
    const Batch restyled = batch();
    EXPECT_EQ(restyled.items[2].layers[0].fontScale, 1.5);
    session->setObjective(u"Vender más"_s);
    session->setFormat(SocialFormat::square);
    now += 1s;
    session->selectSingleIndex(1);
    session->removeCurrentItem();

    undo();
    EXPECT_EQ(batch().items.size(), 3);
    EXPECT_EQ(batch().selectedIndex, 1);
    undo();
    EXPECT_EQ(batch().format, imported.format);
    undo();
    EXPECT_EQ(batch(), restyled);
    undo();
    EXPECT_EQ(batch(), selected);
    redo();
    EXPECT_EQ(batch(), restyled);
    undo();
    undo();
    EXPECT_TRUE(batch().items.isEmpty()) << "an import can be taken back";
    EXPECT_FALSE(session->canUndo());
    redo();
    EXPECT_EQ(batch(), selected);
}

TEST_F(SessionHistoryTest, aGestureIsOneStepThatReachesTheSelection)
{
    session->selectAll();
    const Batch before = batch();
    session->beginCanvasHistoryEdit();
    PublicationItem moved = *batch().currentItem();
    moved.layers[0].frame.x = 0.05;
    session->commitCanvasItem(moved);
    EXPECT_EQ(batch().items[1].layers[0].frame.x, before.items[1].layers[0].frame.x);
    session->endCanvasHistoryEdit(moved.layers[0].id);
    EXPECT_EQ(batch().items[1].layers[0].frame.x, 0.05);
    EXPECT_EQ(stored().items[2].layers[0].frame.x, 0.05);

    // A pan that moves nothing deselects the layer. It is no step, so redo stays possible.
    undo();
    session->selectLayer(moved.layers[1].id);
    session->beginCanvasHistoryEdit();
    session->commitCanvasItem(*batch().currentItem());
    session->selectLayer(QUuid());
    session->endCanvasHistoryEdit({});
    EXPECT_TRUE(session->canRedo());
    session->selectLayer(before.selectedLayerID);
    redo();
    EXPECT_EQ(batch().items[1].layers[0].frame.x, 0.05);

    // Hiding a text and removing shapes on the canvas reach all selected items too.
    now += 1s;
    session->addShape(ShapeKind::circle);
    PublicationItem hidden = *batch().currentItem();
    hidden.layers[1].isVisible = false;
    hidden.shapeLayers.clear();
    session->selectLayer(QUuid());
    session->commitCanvasItem(hidden);
    EXPECT_TRUE(batch().selectedLayerID.isNull());
    for (const PublicationItem& item : batch().items) {
        EXPECT_FALSE(item.layers[1].isVisible);
        EXPECT_TRUE(item.shapeLayers.isEmpty());
    }
    undo();
    undo();
    EXPECT_EQ(batch(), before);
}

TEST_F(SessionHistoryTest, keysAndNumbersPlaceALayerAsAGestureDoes)
{
    session->setFormat(SocialFormat::square);    // 1080 pixels each way
    session->selectAll();
    session->selectLayer(title().id);
    now += 1s;
    const CodableRect start{0.1, 0.2, 0.5, 0.3};
    session->setLayerFrame(start, Pace::once);
    now += 1s;
    const Batch before = batch();
    for (int press = 0; press < 10; ++press) {
        session->moveLayer(3, 0);
        session->resizeLayer(0, -1);
        now += 500ms;
    }
    const CodableRect placed = title().frame;
    EXPECT_NEAR(placed.x, start.x + 30 / 1080.0, 1e-9);
    EXPECT_NEAR(placed.height, start.height - 10 / 1080.0, 1e-9);
    EXPECT_EQ(batch().items[2].layers[0].frame, placed);
    EXPECT_EQ(session->status(), u"Título: posición y tamaño en 3 imágenes."_s);
    session->alignLayer(LayerAlignment::right);
    EXPECT_EQ(title().frame.x + title().frame.width, 1);
    EXPECT_EQ(title().frame.y, placed.y);
    session->alignLayer(LayerAlignment::verticalCentre);
    EXPECT_EQ(batch().items[1].layers[0].frame.y, 0.5 - placed.height / 2);
    undo();
    undo();
    EXPECT_EQ(title().frame, placed);
    undo();
    EXPECT_EQ(batch(), before) << "presses in rapid succession are one step";

    // A part of the layer stays on the canvas, and a smallest size is kept.
    session->moveLayer(9999, -9999);
    session->resizeLayer(-9999, 0);
    EXPECT_EQ(title().frame.x, 0.92);
    EXPECT_NEAR(title().frame.y, 0.08 - title().frame.height, 1e-12);
    EXPECT_EQ(title().frame.width, 0.16);
    session->selectLayer({});
    const Batch rest = batch();
    session->moveLayer(1, 0);
    EXPECT_EQ(batch(), rest);
    EXPECT_EQ(session->status(), u"Selecciona una capa para moverla o cambiar su tamaño."_s);

    session->addShape(ShapeKind::line);
    session->resizeLayer(-9999, -9999);
    session->alignLayer(LayerAlignment::bottom);
    const CodableRect line = batch().items[2].shapeLayers[0].frame;
    EXPECT_EQ(QSizeF(line.width, line.height), QSizeF(0.08, 0.01));
    EXPECT_EQ(line.y + line.height, 1);
}

// Receivers of batchChanged() call canUndo(), so it must be true already when they are called.
TEST_F(SessionHistoryTest, theFirstGestureCanBeUndoneWhenItIsTold)
{
    session = opened();
    bool couldUndo = false;
    QObject::connect(session.get(), &StudioSession::batchChanged, session.get(),
                     [&] { couldUndo = session->canUndo(); });
    ASSERT_FALSE(session->canUndo());
    session->selectSingleIndex(0);
    session->beginCanvasHistoryEdit();
    PublicationItem once = *batch().currentItem();
    once.layers[0].frame.x = 0.07;
    session->commitCanvasItem(once);
    session->endCanvasHistoryEdit(once.layers[0].id);
    EXPECT_TRUE(couldUndo);
    undo();
    EXPECT_FALSE(couldUndo);
}

// The canvas clears the selection when it hides a layer; undo restores both.
TEST_F(SessionHistoryTest, hidingALayerTakesItsSelectionIntoTheStep)
{
    const Batch before = batch();
    PublicationItem hidden = *batch().currentItem();
    hidden.layers[0].isVisible = false;
    session->commitCanvasItem(hidden, QUuid());
    EXPECT_TRUE(batch().selectedLayerID.isNull());
    undo();
    EXPECT_EQ(batch(), before);
}

TEST_F(SessionHistoryTest, aResultInTheTurnOfAnUndoIsAStepOfItsOwn)
{
    restyle(1.5);
    const Batch restyled = batch();
    QObject::connect(session.get(), &StudioSession::activityChanged, session.get(), [&] {
        const Activity* import = session->activities().find(Activity::Kind::importing);
        if (import && import->done > 0)
            session->undo();
    });
    // The slot undoes when the photo has been looked at, so the import ends in the same turn of the
    // event loop as the undo. With a quick worker, that is before load() returns.
    session->load({QUrl::fromLocalFile(file(0))});
    EXPECT_TRUE(waitFor([&] { return !session->isImporting(); }));
    ASSERT_EQ(batch().items.size(), 1);
    undo();
    EXPECT_EQ(batch().items.size(), 3);
    EXPECT_EQ(title().fontScale, 1.0);
    EXPECT_NE(batch(), restyled);
}

TEST_F(SessionHistoryTest, aPanThatShowsNothingIsNoStep)
{
    restyle(1.5);
    undo();
    const Batch before = batch();
    // The photo has just the height of the canvas, so a vertical offset changes nothing.
    session->setPlacement({ImageFitMode::fill, 1, {0, 0.3}});
    EXPECT_EQ(batch(), before);
    EXPECT_TRUE(session->canRedo());
}

TEST_F(SessionHistoryTest, theStatusNamesWhatWasUndone)
{
    const auto undone = [&](const QString& name) {
        undo();
        EXPECT_EQ(session->status(), u"Deshecho: %1."_s.arg(name));
        redo();
        EXPECT_EQ(session->status(), u"Rehecho: %1."_s.arg(name));
        now += 1s;
    };
    undone(u"importación"_s);
    restyle(1.3);
    undone(u"tamaño del título"_s);
    session->setText(CopySlot::callToAction, u"Ven"_s);
    undone(u"texto del CTA"_s);
    session->setFormat(SocialFormat::square);
    undone(u"cambio de formato"_s);
    session->addShape(ShapeKind::line);
    undone(u"forma añadida"_s);
    ShapeLayer line = batch().currentItem()->shapeLayers[0];
    line.strokeWidth = 9;
    session->editShape(line);
    undone(u"trazo de la línea"_s);
    session->setPlacement({ImageFitMode::fill, 2, {}});
    undone(u"encuadre de la foto"_s);
    session->selectAll();
    TextLayer both = title();
    both.alignment = LayerTextAlignment::trailing;
    session->editLayer(both);
    undone(u"alineación del título en 3 imágenes"_s);
    both.alignment = LayerTextAlignment::leading;
    both.shadowAngle = 10;
    session->editLayer(both);
    undone(u"cambios del título en 3 imágenes"_s);
    session->removeCurrentItem();
    undone(u"descarte de 0"_s);

    // restyle() clears the earlier status and sets none of its own.
    restyle(1.9);
    EXPECT_EQ(session->status(), QString());
}

TEST_F(SessionHistoryTest, whatIsPaidStaysPaidWhateverIsUndone)
{
    const QUuid id = batch().items[0].id;
    restyle(1.2);
    now += 100ms;
    markPaid(id, u"huella"_s);
    now += 100ms;
    session->removeCurrentItem();
    const auto isPaid = [&] { return batch().items[0].paidRenderFingerprints.size() == 1; };
    undo();
    EXPECT_TRUE(isPaid()) << "the discarding joined a step from before the payment";
    undo();
    EXPECT_EQ(title().fontScale, 1.0);
    EXPECT_TRUE(isPaid());
    redo();
    EXPECT_TRUE(isPaid());
    redo();    // discards the item again; its next payment comes while it is discarded
    markPaid(id, u"otra"_s);
    undo();
    EXPECT_EQ(batch().items[0].paidRenderFingerprints.size(), 2);
    EXPECT_TRUE(stored().items[0].paidRenderFingerprints.contains(u"huella"_s));
}

TEST_F(SessionHistoryTest, everyChangeIsStoredAtOnceAndAHeldValueWhenItRests)
{
    EXPECT_EQ(stored(), batch());
    session->setText(CopySlot::tagline, u"Dos noches"_s);
    EXPECT_TRUE(batch().items[0].layers[2].isVisible);
    EXPECT_EQ(stored(), batch());
    restyle(1.1, Pace::held);
    restyle(1.2, Pace::held);
    EXPECT_EQ(stored().items[0].layers[0].fontScale, 1.0);
    EXPECT_TRUE(waitFor([&] { return stored() == batch(); }));
    restyle(1.3, Pace::held);
    restyle(1.3);    // as when a slider is released at the value it shows
    EXPECT_EQ(stored(), batch());
    session->selectAll();
    session.reset();    // ends the session before the selection was stored
    session = opened();
    EXPECT_EQ(session->status(), u"Sesión restaurada con 3 imagen(es)."_s);
    EXPECT_EQ(batch().selectedItemIDs.size(), 3);
    EXPECT_FALSE(session->canUndo());

    session->selectSingleIndex(1);
    session->selectItem(2, Qt::ShiftModifier);
    session.reset();
    session = opened();
    session->selectItem(0, Qt::ShiftModifier);
    EXPECT_EQ(session->selectedIndicesForBatch(), (QList<int>{0, 1}))
        << "the range kept its anchor";

    while (batch().currentItem())
        session->removeCurrentItem();
    EXPECT_EQ(preferences.value(workspaceKey), std::nullopt);
}

TEST_F(SessionHistoryTest, whatCannotBeBroughtBackIsSetAsideUntilItCan)
{
    session->setObjective(u"Otoño"_s);
    const Batch whole = batch();
    const auto document = preferences.value(workspaceKey);
    session.reset();
    ASSERT_TRUE(QFile::rename(file(1), file(9)));
    session = opened();
    EXPECT_EQ(session->status(), u"Sesión restaurada con 2 imagen(es)."_s);
    session->setObjective(u"Invierno"_s);
    EXPECT_EQ(preferences.value(asideKey), document);
    session.reset();
    ASSERT_TRUE(QFile::rename(file(2), file(8)));
    session = opened();
    markPaid(batch().items[0].id, u"huella"_s);
    ASSERT_TRUE(QFile::rename(file(9), file(1)));
    ASSERT_TRUE(QFile::rename(file(8), file(2)));
    // Two documents have been set aside, one after the other: the newer is restored first.
    session->restoreWorkspaceAside();
    session->restoreWorkspaceAside();    // does nothing: the first call has not ended
    EXPECT_TRUE(waitFor([&] { return batch().items.size() == 2; }));
    EXPECT_TRUE(session->hasWorkspaceAside());
    now += 1s;
    session->restoreWorkspaceAside();
    EXPECT_TRUE(waitFor([&] { return batch().items.size() == 3; }));
    EXPECT_EQ(batch().objective, whole.objective);
    EXPECT_EQ(batch().items[1], whole.items[1]);
    EXPECT_EQ(batch().items[0].paidRenderFingerprints.size(), 1);
    EXPECT_FALSE(session->hasWorkspaceAside());
    undo();
    EXPECT_EQ(batch().objective, u"Invierno"_s);

    session.reset();
    preferences.setValue(workspaceKey, "{\"items\":");
    session = opened();
    EXPECT_TRUE(batch().items.isEmpty());
    EXPECT_EQ(preferences.value(asideKey), QByteArray("{\"items\":"));

    for (int i = 0; i < 3; ++i)
        QFile::remove(file(i));
    session.reset();
    preferences.setValue(workspaceKey, *document);
    session = opened();
    EXPECT_EQ(preferences.value(workspaceKey), std::nullopt);
    EXPECT_EQ(preferences.value(asideKey + u".2"_s), document);
}

TEST_F(SessionHistoryTest, aFailedSaveIsToldOnceAndTriedAgain)
{
    PreferencesStore nowhere(u"/proc/moltiva/p.sqlite"_s);
    StudioSession lost(m_photos, nowhere, [this] { return now; });
    lost.restoreWorkspaceIfNeeded();
    int told = 0;
    QObject::connect(&lost, &StudioSession::statusChanged, &lost,
                     [&] { told += lost.status().startsWith(u"No se pudo guardar la sesión:"_s); });
    lost.load({QUrl::fromLocalFile(file(0))});
    EXPECT_TRUE(waitFor([&] { return !lost.isImporting(); }));
    EXPECT_TRUE(lost.status().startsWith(u"No se pudo guardar la sesión:"_s));
    lost.setFormat(SocialFormat::square);
    lost.setObjective(u"Sigue"_s);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(lost.batch().objective, u"Sigue"_s);
    EXPECT_TRUE(lost.canUndo());
}

TEST_F(SessionHistoryTest, ofTwoWindowsThatKnowNothingOfEachOtherOneAloneSaves)
{
    const auto other = opened();
    other->setObjective(u"De la otra"_s);
    session->setObjective(u"De esta"_s);
    EXPECT_EQ(stored().objective, u"De la otra"_s);
    EXPECT_TRUE(session->status().startsWith(u"Otra ventana de Moltiva guarda"_s));
    session->setStatus({});
    session->setObjective(u"De esta, aún"_s);
    other->setObjective(u"De la otra, aún"_s);
    EXPECT_EQ(stored().objective, u"De la otra, aún"_s);
    EXPECT_EQ(session->status(), QString()) << "told once";
}

TEST_F(SessionHistoryTest, aProblemStaysUntilThereWasTimeToReadIt)
{
    session->setStatus(u"No cabe."_s, StatusKind::warning);
    QGuiApplication::processEvents();    // ends the turn of the event loop that set the status
    now += 2s;
    restyle(1.7);
    EXPECT_EQ(session->status(), u"No cabe."_s);
    now += 2s;
    restyle(1.8);
    EXPECT_EQ(session->status(), QString());
}

TEST_F(SessionHistoryTest, aStyleIsCopiedWithoutItsTextAndPlace)
{
    restyle(1.7);
    session->copyStyle();
    session->selectSingleIndex(1);
    const TextLayer before = title();
    EXPECT_TRUE(session->canPasteStyle());
    session->pasteStyle();
    TextLayer expected = before;
    expected.fontScale = 1.7;
    EXPECT_EQ(title(), expected);
    session->addShape(ShapeKind::line);
    EXPECT_FALSE(session->canPasteStyle());
    const Batch untouched = batch();
    session->pasteStyle();
    EXPECT_EQ(batch(), untouched);
}

TEST_F(SessionHistoryTest, aTryReplacesTheOneBefore)
{
    const auto scaled = [](double scale) {
        return [scale](PublicationItem& item) { item.layers[0].fontScale *= scale; };
    };
    const PublicationItem before = *batch().currentItem();
    session->tryTemplate(u"Uno"_s, scaled(2));
    now += 1h;
    session->tryTemplate(u"Dos"_s, scaled(3));
    EXPECT_EQ(title().fontScale, before.layers[0].fontScale * 3) << "not upon the first try";
    EXPECT_EQ(session->status(), u"Al azar: «Dos» en 1 imagen. Pulsa R para probar otra."_s);
    undo();
    EXPECT_EQ(*batch().currentItem(), before);

    // A try of another image, and one after an edit, are steps of their own.
    session->tryTemplate(u"Uno"_s, scaled(2));
    session->selectSingleIndex(1);
    session->tryTemplate(u"Uno"_s, scaled(2));
    restyle(0.9);
    session->tryTemplate(u"Dos"_s, scaled(2));
    EXPECT_EQ(title().fontScale, 1.8);
    undo();
    EXPECT_EQ(title().fontScale, 0.9);
    undo();
    undo();
    EXPECT_EQ(batch().items[1].layers[0].fontScale, 1.0);
    EXPECT_EQ(batch().items[0].layers[0].fontScale, before.layers[0].fontScale * 2);
}

TEST_F(SessionHistoryTest, theTextsOfASheetAreOneStepAndGoOutAgain)
{
    const QString path = m_folder.filePath(u"textos.csv"_s);
    QFile sheet(path);
    ASSERT_TRUE(sheet.open(QIODevice::WriteOnly));
    sheet.write("archivo;titulo;cta\n0;Uno;Una llamada con más de cuatro palabras.\nx;y;z\n"
                "2;Tres;\ny;;\n1;Dos");
    sheet.close();
    const auto run = [&](auto command) {
        bool isTold = false;
        const auto told = QObject::connect(session.get(), &StudioSession::statusChanged,
                                           session.get(), [&] { isTold = true; });
        command();
        EXPECT_TRUE(waitFor([&] { return isTold; }));
        QObject::disconnect(told);
    };
    // Imports the sheet in the middle of a drag, right after one change and right before another.
    restyle(1.5);
    session->beginCanvasHistoryEdit();
    restyle(1.6);
    const Batch before = batch();
    run([&] { importTexts(session.get(), path); });
    EXPECT_EQ(session->status(),
              u"Textos aplicados a 2 imágenes. 3 filas sin aplicar: "
              "3, 5 (no hay ninguna imagen con ese nombre); 6 (faltan columnas)."_s);
    EXPECT_EQ(session->statusLog().current().kind, StatusKind::warning);
    EXPECT_EQ(title().text, u"Uno"_s);
    EXPECT_EQ(batch().currentItem()->layers[3].text, u"Una llamada con más de cuatro palabras."_s);
    const Batch filled = batch();
    EXPECT_EQ(stored(), filled);
    restyle(1.7);
    undo();
    EXPECT_EQ(batch(), filled);
    undo();
    EXPECT_EQ(batch(), before);
    session->redo();    // applyTexts() below comes in the same turn of the event loop
    session->applyTexts(readTextSheet("archivo;titulo\n0;Otro"));
    EXPECT_EQ(title().text, u"Otro"_s);
    undo();
    EXPECT_EQ(batch(), filled);
    undo();
    redo();

    run([&] { exportTexts(session.get(), path); });
    EXPECT_EQ(session->status(), u"Textos de 3 imágenes guardados en textos.csv."_s);
    run([&] { importTexts(session.get(), path); });
    EXPECT_EQ(session->status(), u"Textos aplicados a 3 imágenes."_s);
    EXPECT_EQ(batch(), filled);
    EXPECT_TRUE(session->canRedo()) << "what changes nothing is no step";
    run([&] { importTexts(session.get(), m_folder.filePath(u"otro.csv"_s)); });
    EXPECT_TRUE(session->status().startsWith(
        u"No se pudieron leer los textos de otro.csv: no se puede abrir ("_s));
    run([&] { exportTexts(session.get(), u"/proc/textos.csv"_s); });
    EXPECT_TRUE(
        session->status().startsWith(u"No se pudieron guardar los textos en textos.csv ("_s));
}

TEST_F(SessionHistoryTest, aSheetIsRefusedWhileOtherImagesAreOnTheirWay)
{
    const QString path = m_folder.filePath(u"textos.csv"_s);
    QFile sheet(path);
    ASSERT_TRUE(sheet.open(QIODevice::WriteOnly) && sheet.write("archivo;titulo\n0;Uno\n") > 0);
    sheet.close();
    QStringList told;
    QObject::connect(session.get(), &StudioSession::statusChanged, session.get(),
                     [&] { told.append(session->status()); });
    const QString refusal =
        u"Espera a que termine la importación de imágenes para importar los textos."_s;
    // Blocks the only worker, so that the sheet is read only after load() has begun to import.
    const int threads = workers().maxThreadCount();
    workers().setMaxThreadCount(1);
    QSemaphore gate;
    startOnWorker([&gate] { gate.acquire(); });
    importTexts(session.get(), path);
    session->load({QUrl::fromLocalFile(file(0))});
    importTexts(session.get(), path);
    EXPECT_EQ(session->status(), refusal);
    EXPECT_EQ(session->statusLog().current().kind, StatusKind::warning);
    gate.release();
    EXPECT_TRUE(waitFor([&] { return !session->isImporting(); }));
    EXPECT_EQ(told.count(refusal), 2);
    EXPECT_EQ(title().text, GeneratedCopy::placeholder().title);
    workers().setMaxThreadCount(threads);
}
