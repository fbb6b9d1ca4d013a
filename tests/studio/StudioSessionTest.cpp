#include "studio/StudioSession.h"
#include "platform/PreferencesStore.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class StudioSessionTest : public ::testing::Test {
protected:
    QUrl photo(const QString& name)
    {
        QImage image(64, 48, QImage::Format_RGB32);
        image.fill(Qt::blue);
        EXPECT_TRUE(image.save(m_folder.filePath(name)));
        return url(name);
    }
    QUrl textFile(const QString& name)
    {
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write("hola") > 0);
        return url(name);
    }
    QUrl url(const QString& name) { return QUrl::fromLocalFile(m_folder.filePath(name)); }
    void load(const QList<QUrl>& urls)
    {
        session.load(urls);
        wait();
    }
    void wait()
    {
        QElapsedTimer watch;
        for (watch.start(); session.isImporting() && watch.elapsed() < 20000;)
            QGuiApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        ASSERT_FALSE(session.isImporting());
    }

    QTemporaryDir m_folder, m_cache;
    PreferencesStore preferences{m_cache.filePath(u"p.sqlite"_s)};
    StudioSession session{std::make_shared<PhotoCache>(m_cache.path()), preferences};
};

}    // namespace

TEST_F(StudioSessionTest, startsEmptyAndSaysHowToBegin)
{
    EXPECT_EQ(session.status(), u"Importa una imagen o una carpeta para empezar."_s);
    EXPECT_EQ(session.batch(), Batch());
    EXPECT_EQ(session.batch().format, SocialFormat::carouselPortrait);
    EXPECT_EQ(session.generationMode(), CopyGenerationMode::local);
}

TEST_F(StudioSessionTest, anImportReplacesTheBatchOnceAndPassesOverWhatIsNoPhoto)
{
    load({photo(u"a.jpg"_s), photo(u"b.png"_s), photo(u"c.jpg"_s)});
    session.selectItem(2, Qt::ShiftModifier);
    int changes = 0;
    QObject::connect(&session, &StudioSession::batchChanged, &session, [&] { ++changes; });
    load({url(u"c.jpg"_s), textFile(u"x.jpg"_s), url(u"missing.jpg"_s), url(u"a.jpg"_s)});

    EXPECT_EQ(changes, 1);
    const Batch& batch = session.batch();
    ASSERT_EQ(batch.items.size(), 2);
    EXPECT_EQ(batch.items[0].filename(), u"c"_s);
    EXPECT_EQ(batch.items[0].image.size, QSize(64, 48));
    EXPECT_EQ(batch.items[0].image.digest.size(), 32);
    EXPECT_EQ(batch.selectedItemIDs, QSet<QUuid>{batch.items[0].id});
    EXPECT_EQ(batch.selectedLayerID, batch.items[0].layers[0].id);
    EXPECT_EQ(session.status(), u"2 imagen(es) importada(s). Pulsa Generar con Gemma. "
                                "2 no se han podido leer."_s);
    EXPECT_EQ(session.statusLog().current().link.details,
              (QStringList{u"x.jpg"_s, u"missing.jpg"_s}));
    load({url(u"a.jpg"_s)});
    EXPECT_EQ(session.status(), u"1 imagen(es) importada(s). Pulsa Generar con Gemma."_s);
    EXPECT_TRUE(session.statusLog().current().link.details.isEmpty());
}

TEST_F(StudioSessionTest, anImportOfNothingLeavesTheBatchAndSaysSo)
{
    load({photo(u"a.jpg"_s)});
    const Batch before = session.batch();
    for (const QList<QUrl>& nothing :
         {QList<QUrl>{}, {textFile(u"x.jpg"_s)}, {url(u"no-such-folder"_s)}}) {
        load(nothing);
        EXPECT_EQ(session.batch(), before);
        EXPECT_EQ(session.status(),
                  u"No he encontrado imágenes compatibles."_s +
                      (nothing.isEmpty() ? u""_s : u" 1 no se ha podido leer."_s));
        EXPECT_EQ(session.statusLog().current().kind, StatusKind::warning);
    }
}

TEST_F(StudioSessionTest, aStoppedImportLeavesTheBatchAsItWas)
{
    QList<QUrl> photos;
    for (int i = 0; i < 30; ++i)
        photos.append(photo(u"%1.jpg"_s.arg(i)));
    bool showedSome = false;
    QObject::connect(&session, &StudioSession::activityChanged, &session, [&] {
        const Activity* import = session.activities().find(Activity::Kind::importing);
        if (import && import->incoming.size() >= 3) {
            showedSome = true;
            session.activities().stop(Activity::Kind::importing);
        }
    });
    load(photos);
    EXPECT_TRUE(showedSome);
    EXPECT_TRUE(session.batch().items.isEmpty());
    EXPECT_EQ(session.status(), u"Importación cancelada. El lote sigue como estaba."_s);
    for (int i = 0; i < 20; ++i)
        QGuiApplication::processEvents(QEventLoop::AllEvents, 10);
    EXPECT_TRUE(session.batch().items.isEmpty()) << "what was under way came late";
}

TEST_F(StudioSessionTest, aSecondImportTakesThePlaceOfOneUnderWay)
{
    QList<QUrl> photos;
    for (int i = 0; i < 10; ++i)
        photos.append(photo(u"%1.jpg"_s.arg(i)));
    session.load(photos);
    load({url(u"7.jpg"_s)});
    for (int i = 0; i < 20; ++i)
        QGuiApplication::processEvents(QEventLoop::AllEvents, 10);
    ASSERT_EQ(session.batch().items.size(), 1);
    EXPECT_EQ(session.batch().items[0].filename(), u"7"_s);
}

TEST_F(StudioSessionTest, aSessionMayGoInTheMiddleOfAnImport)
{
    QList<QUrl> photos;
    for (int i = 0; i < 10; ++i)
        photos.append(photo(u"%1.jpg"_s.arg(i)));
    auto doomed =
        std::make_unique<StudioSession>(std::make_shared<PhotoCache>(m_cache.path()), preferences);
    doomed->load(photos);
    doomed.reset();
    for (int i = 0; i < 20; ++i)
        QGuiApplication::processEvents(QEventLoop::AllEvents, 10);
}

TEST_F(StudioSessionTest, navigationStopsAtTheEnds)
{
    load({photo(u"a.jpg"_s), photo(u"b.jpg"_s)});
    session.previousItem();
    EXPECT_EQ(session.batch().selectedIndex, 0);
    session.nextItem();
    session.nextItem();
    EXPECT_EQ(session.batch().selectedIndex, 1);
}

TEST_F(StudioSessionTest, discardingSaysWhatWentAndHowManyAreLeft)
{
    load({photo(u"50%2.jpg"_s), photo(u"b.jpg"_s)});
    session.removeCurrentItem();
    EXPECT_EQ(session.status(), u"50%2 descartada. Quedan 1 imagen."_s);
    session.removeCurrentItem();
    EXPECT_EQ(session.status(), u"b descartada. Quedan 0 imágenes."_s);
    session.removeCurrentItem();
    EXPECT_TRUE(session.batch().items.isEmpty());
}

TEST_F(StudioSessionTest, aCommandThatChangesNothingIsNoChange)
{
    load({photo(u"a.jpg"_s)});
    int changes = 0;
    QObject::connect(&session, &StudioSession::batchChanged, &session, [&] { ++changes; });
    session.setFormat(SocialFormat::carouselPortrait);
    session.selectItem(0, Qt::NoModifier);
    session.selectLayer(QUuid::createUuid());
    session.setCurrentItem(*session.batch().currentItem());
    session.setCurrentItem(PublicationItem::make(QUrl(), {}));
    EXPECT_EQ(changes, 0);
    session.setFormat(SocialFormat::storyReel);
    EXPECT_EQ(changes, 1);
}
