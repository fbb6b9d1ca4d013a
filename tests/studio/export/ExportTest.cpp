#include "canvas/RenderFingerprint.h"
#include "tests/FullDisk.h"
#include "tests/studio/PayingStudio.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class ExportTest : public ::testing::Test {
protected:
    void loadThree()
    {
        studio->signIn();
        studio->load({world.photo(u"a.png"_s, Qt::blue), world.photo(u"b.png"_s, Qt::red),
                      world.photo(u"c.png"_s, Qt::green)});
    }
    void restart()
    {
        studio.reset();
        studio = std::make_unique<PayingStudio>(world);
        studio->signIn();
    }
    StudioSession& session() { return studio->session; }
    using Prices = std::pair<qint64, qint64>;

    PayingWorld world;
    std::unique_ptr<PayingStudio> studio = std::make_unique<PayingStudio>(world);
};

}    // namespace

TEST_F(ExportTest, ARenderIsPaidOnceAndAnEditedOneAnew)
{
    EXPECT_EQ(studio->prices(), Prices(0, 0)) << "of an empty batch";
    loadThree();
    EXPECT_EQ(studio->prices(), Prices(50, 150));
    EXPECT_EQ(studio->exportCurrent(), u"Exportado: una.png"_s);
    EXPECT_EQ(world.charged(), 50);
    EXPECT_EQ(session().statusLog().current().link.folder, world.file(u"salida"_s));
    EXPECT_EQ(studio->prices(), Prices(0, 100));
    EXPECT_TRUE(session().exports().isPaid(session().batch().items[0].id));

    EXPECT_EQ(studio->exportAll(), u"Exportadas 3 imágenes. Coste: 100 créditos."_s);
    EXPECT_EQ(studio->exportAll(), u"Exportadas 3 imágenes. Sin coste adicional."_s);
    EXPECT_EQ(world.charged(), 150);
    EXPECT_EQ(studio->account.account().balance, world.balance());
    EXPECT_EQ(world.exported(), QStringList({u"a-publicacion.png"_s, u"b-publicacion.png"_s,
                                             u"c-publicacion.png"_s, u"una.png"_s}));

    session().setText(CopySlot::title, u"Otro"_s);
    EXPECT_EQ(studio->prices(), Prices(50, 50));
    session().undo();
    EXPECT_EQ(studio->prices(), Prices(0, 0));
    session().setFormat(SocialFormat::square);
    EXPECT_EQ(studio->prices(), Prices(50, 150));
    session().setFormat(SocialFormat::carouselPortrait);
    session().selectItem(1, Qt::ShiftModifier);
    session().setText(CopySlot::title, u"Otro más"_s);
    EXPECT_EQ(studio->prices(), Prices(50, 50));
    EXPECT_EQ(session().exports().exportIndices(), QList<int>({0, 1}));

    restart();
    EXPECT_EQ(studio->prices(), Prices(50, 50)) << "after a restart";
    EXPECT_EQ(studio->exportAll(), u"Exportadas 2 imágenes. Coste: 50 créditos."_s);
}

TEST_F(ExportTest, WhatCannotBePaidOrPreparedCostsNothing)
{
    loadThree();
    QFile::remove(world.file(u"fotos/b.png"_s));
    EXPECT_EQ(studio->exportAll(), u"No se pudieron preparar todas las imágenes para descargar."_s);
    session().selectSingleIndex(1);
    EXPECT_EQ(studio->exportCurrent(), u"No se pudo preparar la imagen para descargar."_s);
    // Refuses a different photo under the file name of the batch's photo.
    world.photo(u"b.png"_s, Qt::yellow);
    EXPECT_EQ(studio->exportCurrent(), u"No se pudo preparar la imagen para descargar."_s);
    world.photo(u"b.png"_s, Qt::red);

    world.leaveCredits(40);
    EXPECT_EQ(studio->exportCurrent(), u"No tienes créditos suficientes."_s) << "says the service";
    EXPECT_TRUE(session().statusLog().current().link.isPurchase);
    EXPECT_TRUE(turnUntil([&] { return studio->account.account().balance == 40; }));
    // The balance is known from now on: the next export is refused before drawing.
    bool isDrawing = false;
    QObject::connect(&session(), &StudioSession::activityChanged, [&] {
        const Activity* running = session().activities().find(Activity::Kind::exporting);
        isDrawing = isDrawing || (running && running->done > 0);
    });
    EXPECT_EQ(studio->exportCurrent(), u"Necesitas 50 créditos para descargar esta imagen."_s);
    EXPECT_TRUE(session().statusLog().current().link.isPurchase);
    EXPECT_EQ(studio->exportAll(), u"Necesitas 150 créditos para descargar estas imágenes."_s);
    EXPECT_FALSE(isDrawing);
    EXPECT_EQ(world.exported(), QStringList());
    EXPECT_EQ(world.charged(), 0);
    EXPECT_TRUE(world.ledger().isEmpty());
    EXPECT_TRUE(QDir(world.file(u"espera"_s)).isEmpty()) << "rendered pictures stayed behind";
}

TEST_F(ExportTest, APhotoThatChangedOrWentCountsAsNotRenderable)
{
    loadThree();
    studio->exportAll();
    EXPECT_EQ(studio->prices(), Prices(0, 0));
    world.photo(u"b.png"_s, Qt::yellow);
    session().exports().lookAtPhotos();
    EXPECT_TRUE(turnUntil([&] { return session().displayedExportAllCost() == 150; }));
    EXPECT_EQ(session().displayedExportCurrentCost(), 0);
    world.photo(u"b.png"_s, Qt::red);
    session().exports().lookAtPhotos();
    EXPECT_TRUE(turnUntil([&] { return session().displayedExportAllCost() == 0; }));
}

TEST_F(ExportTest, WhatCannotBeWrittenIsGivenBack)
{
    loadThree();
    const QString wholeRefund =
        u"No se pudieron guardar todas las imágenes. Se han devuelto los 150 créditos."_s;
    EXPECT_EQ(studio->exportAll(u"no existe"_s), wholeRefund);
    // A folder blocks the path of the second of three images. The files of the other two are kept.
    QDir(world.folder.path()).mkpath(u"salida/b-publicacion.png/x"_s);
    EXPECT_EQ(studio->exportAll(), wholeRefund);
    EXPECT_EQ(world.exported(), QStringList({u"a-publicacion.png"_s, u"c-publicacion.png"_s}));
    EXPECT_FALSE(QImage(world.file(u"salida/a-publicacion.png"_s)).isNull());
    EXPECT_EQ(studio->exportCurrent(u"salida/%1.png"_s.arg(QString(300, u'x'))),
              u"No se pudo guardar el archivo. Se han devuelto los 50 créditos."_s);
    EXPECT_EQ(world.charged(), 0);
    EXPECT_EQ(studio->prices(), Prices(50, 150));

    QDir(world.file(u"salida/b-publicacion.png"_s)).removeRecursively();
    studio->exportAll();
    EXPECT_EQ(world.charged(), 150);
    EXPECT_EQ(studio->exportAll(u"no existe"_s), u"No se pudieron guardar todas las imágenes."_s);
    EXPECT_EQ(studio->exportCurrent(u"no existe/a.png"_s), u"No se pudo guardar el archivo."_s);
    EXPECT_EQ(world.charged(), 150);
}

TEST_F(ExportTest, AStoppedExportCostsNothing)
{
    loadThree();
    // Creates an unfinished file, as an export that was killed leaves it.
    QFile killed(world.file(u"salida/.moltiva-5d1f4c0e-3d1c-4a86-8b8e-4b7d7b6f1a11.x"_s));
    EXPECT_TRUE(killed.open(QIODevice::WriteOnly));
    session().exportAll(world.file(u"salida"_s));
    EXPECT_TRUE(session().isExporting());
    session().activities().stop(Activity::Kind::exporting);
    EXPECT_EQ(studio->ended(), u"Exportación detenida."_s);
    EXPECT_TRUE(world.ledger().isEmpty());

    studio->journal.stepReached = [&](const char* step) {
        if (QByteArrayView(step) == "wrote")
            session().activities().stop(Activity::Kind::exporting);
    };
    EXPECT_EQ(studio->exportAll(), u"Exportación detenida. Se han devuelto los 150 créditos."_s);
    EXPECT_EQ(world.exported(), QStringList({u"a-publicacion.png"_s}));
    EXPECT_EQ(world.charged(), 0);
}

TEST_F(ExportTest, TheSamePhotoTwiceIsPaidTwiceAndWrittenTwice)
{
    studio->signIn();
    const QUrl photo = world.photo(u"a.png"_s);
    studio->load({photo, photo});
    EXPECT_EQ(studio->exportAll(), u"Exportadas 2 imágenes. Coste: 100 créditos."_s);
    EXPECT_EQ(world.exported(), QStringList({u"a-publicacion-2.png"_s, u"a-publicacion.png"_s}));
    session().selectSingleIndex(0);
    session().setText(CopySlot::title, u"Otro"_s);
    session().selectSingleIndex(1);
    session().setText(CopySlot::title, u"Otro"_s);
    studio->exportCurrent();
    session().selectSingleIndex(0);
    studio->exportCurrent();
    EXPECT_EQ(world.charged(), 200) << "two items shared a payment";
}

TEST_F(ExportTest, PixelsThatWerePaidAreFreeWhateverTheyAreMadeOf)
{
    loadThree();
    studio->exportCurrent();
    // An opaque rectangle covers everything: shapes below it do not show.
    PublicationItem item = session().batch().items[0];
    ShapeLayer cover(QUuid::createUuid(), ShapeKind::rectangle, {-0.1, -0.1, 1.2, 1.2});
    cover.cornerRadius = 0;
    for (TextLayer& layer : item.layers)
        layer.isVisible = false;
    item.shapeLayers = {cover};
    session().setCurrentItem(item);
    EXPECT_EQ(studio->prices().first, 50);
    studio->exportCurrent();
    EXPECT_EQ(world.charged(), 100);
    item.shapeLayers.prepend({QUuid::createUuid(), ShapeKind::circle, {0.2, 0.2, 0.5, 0.5}});
    session().setCurrentItem(item);
    EXPECT_EQ(studio->prices().first, 50) << "a price draws nothing";
    EXPECT_EQ(studio->exportCurrent(), u"Exportado: una.png"_s);
    EXPECT_EQ(world.charged(), 100);
    EXPECT_EQ(studio->prices().first, 0) << "known from now on";
}

TEST_F(ExportTest, WhatIsPaidIsStoredWithTheEndOfItsEntryOrLater)
{
    const auto entries = [&] {
        return studio->preferences.keysBeginningWith(u"moltiva.creditReservation."_s);
    };
    loadThree();
    studio->journal.stepReached = [&](const char* step) {
        if (QByteArrayView(step) == "worked")
            refuseWrites(true);
    };
    EXPECT_EQ(studio->exportCurrent(), u"Exportado: una.png. El pago no se ha podido anotar."_s);
    EXPECT_EQ(studio->prices().first, 0);
    EXPECT_EQ(entries().size(), 1);
    studio->journal.stepReached = {};
    refuseWrites(false);
    session().setText(CopySlot::subtitle, u"Sigue"_s);    // saving this removes the journal's entry
    EXPECT_TRUE(entries().isEmpty());
    session().undo();
    restart();
    EXPECT_EQ(studio->prices().first, 0);
    EXPECT_EQ(world.charged(), 50);
}

// While the export runs, another operation of the same window pays for the second image.
TEST_F(ExportTest, WhatIsPaidMeanwhileIsNotPaidAgain)
{
    loadThree();
    const PublicationItem item = session().batch().items[1];
    const SocialFormat format = session().batch().format;
    const RenderSource source{item, item.image.digest, PayingStudio::smallSize(format),
                              designSize(format)};
    const RenderedOutput output{item, {}, renderFingerprint(source), u"pixels-x"_s};
    bool isPaid = false;
    QObject::connect(&session(), &StudioSession::activityChanged, [&] {
        if (session().isExporting() && !std::exchange(isPaid, true))
            session().markRenderedOutputsAsPaid({output}, {});
    });
    EXPECT_EQ(studio->exportAll(), u"Exportadas 3 imágenes. Coste: 100 créditos."_s);
    EXPECT_EQ(world.charged(), 100);
}

TEST_F(ExportTest, APaymentDuringAGestureOutlivesItsUndo)
{
    loadThree();
    PublicationItem moved = session().batch().items[0];
    session().beginCanvasHistoryEdit();
    moved.layers[0].frame.x += 0.1;
    session().commitCanvasItem(moved);
    studio->exportCurrent();
    moved.paidRenderFingerprints = session().batch().items[0].paidRenderFingerprints;
    moved.layers[0].frame.x += 0.1;
    session().commitCanvasItem(moved);
    session().endCanvasHistoryEdit(moved.layers[0].id);
    session().undo();
    EXPECT_EQ(session().batch().items[0].paidRenderFingerprints.size(), 2);
}
