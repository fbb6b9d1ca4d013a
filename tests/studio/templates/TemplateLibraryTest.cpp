#include "studio/templates/TemplateLibrary.h"

#include "platform/PreferencesStore.h"
#include "platform/photo/PhotoCache.h"
#include "tests/studio/PayingStudio.h"

#include <QCoroTask>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr SocialFormat square = SocialFormat::square;

class TemplateLibraryTest : public ::testing::Test {
protected:
    std::unique_ptr<TemplateLibrary> opened()
    {
        auto library = std::make_unique<TemplateLibrary>(saved, nullptr, preferences,
                                                         folder.filePath(u"data"_s));
        QObject::connect(library.get(), &TemplateLibrary::told, library.get(),
                         [this](const QString& sentence, bool isWarning) {
                             told.append((isWarning ? u"! "_s : QString()) + sentence);
                         });
        library->load();
        EXPECT_TRUE(turnUntil([&] { return library->isLoaded(); }));
        return library;
    }
    QString pack(const QString& name, const QStringList& designs)
    {
        const QDir made(folder.filePath(name));
        QDir().mkpath(made.path());
        for (const QString& each : designs) {
            QFile file(made.filePath(each + u".json"_s));
            EXPECT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(
                u"{\"name\":\"%1\",\"format\":\"square\",\"textLayers\":[]}"_s.arg(each).toUtf8());
        }
        return made.path();
    }
    static QStringList titles(const TemplateLibrary& library)
    {
        QStringList titles;
        for (const LibrarySection& section : library.sections(square))
            titles.append(u"%1 %2"_s.arg(section.title).arg(section.designs.size()));
        return titles;
    }

    QTemporaryDir folder;
    PreferencesStore preferences{folder.filePath(u"preferences.sqlite"_s)};
    SavedTemplates saved{preferences,
                         std::make_shared<PhotoCache>(folder.filePath(u"thumbnails"_s))};
    QStringList told;
};

}    // namespace

TEST_F(TemplateLibraryTest, InstallsPacksAndBringsThemBack)
{
    auto library = opened();
    EXPECT_EQ(titles(*library), (QStringList{u"Mis plantillas 0"_s, u"De Moltiva 15"_s}));
    QFile broken(pack(u"Mercado"_s, {u"Uno"_s, u"Dos"_s}) + u"/roto.json"_s);
    EXPECT_TRUE(broken.open(QIODevice::WriteOnly));
    QCoro::waitFor(library->installPack(folder.filePath(u"Mercado"_s)));
    EXPECT_EQ(told.takeLast(),
              u"! Paquete «Mercado» instalado: 2 plantillas. No se pudo leer «roto.json» (no es "
              "una plantilla de Moltiva)."_s);
    QCoro::waitFor(library->installPack(pack(u"Árbol"_s, {u"Uno"_s})));
    EXPECT_EQ(told.takeLast(), u"Paquete «Árbol» instalado: 1 plantilla."_s);
    QCoro::waitFor(library->installPack(folder.filePath(u"no-está.zip"_s)));
    EXPECT_EQ(told.takeLast(), u"! No se puede instalar «no-está.zip»: no existe."_s);
    const QStringList both{u"Mis plantillas 0"_s, u"De Moltiva 15"_s, u"Mercado 2"_s, u"Árbol 1"_s};
    library = opened();
    EXPECT_EQ(titles(*library), both);
    // The packs have a definition with the same contents, and so with the same id.
    QSet<QUuid> ids;
    for (const QUuid id : library->found({}, {}, false, square)) {
        ids.insert(id);
        EXPECT_EQ(library->find(id)->id, id);
        EXPECT_TRUE(library->application(id));
    }
    EXPECT_EQ(ids.size(), 18);

    const QString key = library->sections(square)[2].key;
    QCoro::waitFor(library->removePack(key));
    EXPECT_EQ(titles(*library).size(), 3);
    EXPECT_EQ(titles(*opened()).size(), 3);
    EXPECT_EQ(library->lastRemovedPack(), u"Mercado"_s);
    library = opened();
    EXPECT_EQ(library->lastRemovedPack(), u"Mercado"_s) << "removed in an earlier run";
    QCoro::waitFor(library->callBackPack());
    EXPECT_EQ(titles(*library), both);
    EXPECT_EQ(titles(*opened()), both);
    EXPECT_EQ(library->lastRemovedPack(), QString());
    EXPECT_EQ(opened()->lastRemovedPack(), QString());

    // A newer version of a pack replaces it, and can be exchanged for the earlier one.
    pack(u"Mercado"_s, {u"Tres"_s});
    QCoro::waitFor(library->installPack(folder.filePath(u"Mercado"_s)));
    EXPECT_EQ(library->sections(square)[2].designs.size(), 3);
    for (const int count : {2, 3, 2}) {
        QCoro::waitFor(library->callBackPack());
        EXPECT_EQ(library->sections(square)[2].designs.size(), count);
    }
    QFile damaged(folder.filePath(u"data/packs/Mercado.zip"_s));
    EXPECT_TRUE(damaged.resize(damaged.size() / 2));
    told.clear();
    EXPECT_EQ(titles(*opened()).size(), 3);
    EXPECT_EQ(told, QStringList{u"! El paquete «Mercado» está dañado y no se puede leer. Instálalo "
                                "otra vez."_s});
}

TEST_F(TemplateLibraryTest, FindsDesignsAndKeepsMarks)
{
    auto library = opened();
    const PublicationItem item = PublicationItem::make({}, {});
    const QUuid own = saved.saveTemplate(item, square);
    saved.renameTemplate(own, u"Niño de agua"_s);
    saved.saveTemplate(item, SocialFormat::storyReel);
    EXPECT_EQ(library->found(u"agua nino"_s, {}, false, square), QList{own});
    EXPECT_TRUE(library->found(u"agua"_s, {}, false, SocialFormat::storyReel).isEmpty());
    const QStringList tags = library->tags(square);
    ASSERT_GE(tags.size(), 6);
    const auto tagged = [&](const QString& tag) { return library->found({}, tag, false, square); };
    EXPECT_GE(tagged(tags[0]).size(), tagged(tags[1]).size());
    EXPECT_GE(tagged(u"oferta"_s).size(), 2);
    EXPECT_EQ(library->found(u"OFERTÁ"_s, {}, false, square), tagged(u"oferta"_s));

    library->setFavourite(own, true);
    EXPECT_EQ(library->found({}, {}, true, square), QList{own});
    const QList<QUuid> offers = tagged(u"oferta"_s);
    for (const QUuid id : library->found({}, {}, false, square).first(6))
        library->noteUsed(id);
    library->noteUsed(own);
    const QList<QUuid> recent = library->recent(square);
    EXPECT_EQ(recent.size(), 5);
    EXPECT_EQ(recent.first(), own);
    EXPECT_TRUE(library->recent(SocialFormat::horizontal).isEmpty());
    library->setFolded(u"moltiva"_s, true);
    for (int i = 0; i < 20; ++i) {
        const auto other = library->anyOther(offers[0], square, offers);
        EXPECT_TRUE(other && *other != offers[0] && offers.contains(*other));
    }
    EXPECT_EQ(library->anyOther(own, square, {own}), std::nullopt);

    library.reset();    // stores the marks
    library = opened();
    EXPECT_TRUE(library->isFavourite(own));
    EXPECT_EQ(library->recent(square), recent);
    EXPECT_TRUE(library->isFolded(u"moltiva"_s));
    EXPECT_FALSE(library->isFolded(u"own"_s));
}

TEST_F(TemplateLibraryTest, ExportsOwnTemplatesWithoutTheirPhotos)
{
    const auto library = opened();
    const QString path = folder.filePath(u"Lo mío.zip"_s);
    QCoro::waitFor(library->exportOwn(path));
    EXPECT_EQ(told.takeLast(), u"! No hay plantillas tuyas que exportar."_s);
    const PublicationItem item = PublicationItem::make({}, {});
    for (const SocialFormat format : {square, SocialFormat::horizontal}) {
        VisualTemplate own = VisualTemplate::of(item, u"A/B"_s, format);
        own.previewPNG = "una foto";
        saved.addTemplate(own);
    }
    QCoro::waitFor(library->exportOwn(path));
    EXPECT_EQ(told.takeLast(), u"2 plantillas exportadas en el paquete Lo mío.zip."_s);
    const PackFile read = readPack(path);
    ASSERT_TRUE(read.pack) << read.error.toStdString();
    EXPECT_EQ(read.pack->name, u"Lo mío"_s);
    ASSERT_EQ(read.pack->designs.size(), 2);
    EXPECT_EQ(read.pack->designs[0].definition.name, u"A/B"_s);
    EXPECT_EQ(read.pack->designs[0].definition.socialFormat(), SocialFormat::horizontal);
    QCoro::waitFor(library->exportOwn(u"/proc/nada/x.zip"_s));
    EXPECT_TRUE(told.last().startsWith(u"! No se pudieron exportar tus plantillas: "_s));
}
