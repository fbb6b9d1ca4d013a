#include "app/account/AuthGateView.h"
#include "app/controls/Caption.h"
#include "app/controls/fields/LineField.h"
#include "app/layers/SidePanel.h"
#include "app/layers/TextPanel.h"
#include "app/presets/LargePreview.h"
#include "app/presets/PresetDrawing.h"
#include "app/presets/PresetGrid.h"
#include "app/presets/StyleShelf.h"
#include "app/presets/TagChips.h"
#include "app/presets/TemplateGallery.h"
#include "app/presets/TemplatesBinding.h"
#include "app/presets/TemplatesPanel.h"
#include "app/stage/StagePanel.h"
#include "app/window/MainWindow.h"
#include "app/window/StatusLine.h"
#include "app/window/StudioShell.h"
#include "canvas/interaction/CanvasInteractionView.h"
#include "platform/PreferencesStore.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"
#include "studio/templates/SharedTemplates.h"
#include "studio/templates/TemplateLibrary.h"
#include "tests/app/Events.h"
#include "tests/support/ScriptedAccount.h"

#include <QApplication>
#include <QCryptographicHash>
#include <QMenu>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QWheelEvent>

#include <QtTest/QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// Shows a window with three photos and with the templates tab open.
class TemplatesTest : public ::testing::Test {
protected:
    TemplatesTest()
    {
        // Before the window is shown, which asks for the account.
        account.answer("GET /api/auth/me", ScriptedAccount::summary().replace(
                                               R"("id":"1")", R"("id":"1","isAdmin":true)"));
        window.setSharedTemplates(shared);
        session.restoreWorkspaceIfNeeded();
        window.resize(1280, 800);
        window.show();
        for (int i = 0; i < 3; ++i) {
            QImage image(60, 40, QImage::Format_RGB32);
            image.fill(QColor::fromHsv(i * 30, 200, 200));
            EXPECT_TRUE(image.save(m_folder.filePath(u"f%1.png"_s.arg(i))));
        }
        session.load({QUrl::fromLocalFile(m_folder.path())});
        settle();    // the first import opens the templates tab
    }
    void settle()
    {
        for (int turn = 0; turn < 3; ++turn) {
            QTest::qWait(20);
            ASSERT_TRUE(QTest::qWaitFor([this] { return window.isIdle(); }, 30000));
        }
    }
    SidePanel* side() { return window.shell()->sidePanel(); }
    TemplateGallery* gallery() { return side()->templatesPanel()->gallery(); }
    // The tiles of a section; none if the section is not there.
    QList<GalleryTile> tiles(const QString& section)
    {
        for (const GallerySection& each : gallery()->sections()) {
            if (each.key == section)
                return each.tiles;
        }
        return {};
    }
    QList<GalleryTile> own() { return tiles(u"own"_s); }
    QList<GalleryTile> packaged() { return tiles(u"moltiva"_s); }
    // What the service lists as the team's: this design or, without one, nothing.
    void share(const std::optional<JSONVisualTemplateDefinition>& design, const QByteArray& version)
    {
        QByteArray entries;
        if (design) {
            const QByteArray bytes = definitionBytes(*design);
            const QByteArray name = design->id.toString(QUuid::WithoutBraces).toLatin1() + ".json";
            const QByteArray digest =
                QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
            entries = R"({"fileName":")" + name + R"(","sha256":")" + digest + R"(","bytes":)" +
                      QByteArray::number(bytes.size()) + R"(,"updatedAt":"","versions":3})";
            account.answer("GET /api/publicaciones/templates/file",
                           R"({"fileName":")" + name + R"(","sha256":")" + digest +
                               R"(","jsonBase64":")" + bytes.toBase64() + R"("})");
        }
        account.answer("GET /api/publicaciones/templates", R"({"version":")" + version +
                                                               R"(","templates":[)" + entries +
                                                               R"(],"deleted":[]})");
    }
    QMenu* menuOf(QUuid id)
    {
        gallery()->showMenu(gallery()->partOf(id));
        return qobject_cast<QMenu*>(QApplication::activePopupWidget());
    }
    static QStringList textsOf(const QMenu* menu)
    {
        QStringList texts;
        for (const QAction* action : menu->actions()) {
            if (!action->text().isEmpty())
                texts.append(action->text());
        }
        return texts;
    }
    void point(QUuid id)
    {
        const QPointF at = gallery()->partRect(gallery()->partOf(id)).center();
        QHoverEvent event(QEvent::HoverMove, at, at, QPointF());
        QApplication::sendEvent(gallery()->viewport(), &event);
    }
    void click(QUuid id)
    {
        press(*gallery()->viewport(), gallery()->partRect(gallery()->partOf(id)).center());
    }
    QString said(QUuid id) { return gallery()->accessibleText(gallery()->partOf(id)); }
    void focusGallery(QUuid id)
    {
        gallery()->setFocus(Qt::TabFocusReason);
        QTest::keyClick(gallery(), Qt::Key_Home);
        while (!gallery()->markedTile() || gallery()->markedTile()->id != id)
            QTest::keyClick(gallery(), Qt::Key_Right);
    }
    SavedTemplates& saved() { return window.templates().saved(); }
    const PublicationItem& current() { return *session.batch().currentItem(); }
    QByteArray onCanvas()
    {
        const QImage image = window.shell()->stage()->canvas()->grab().toImage();
        return {reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes()};
    }

    QTemporaryDir m_folder, m_data;
    std::shared_ptr<PhotoCache> m_photos =
        std::make_shared<PhotoCache>(m_data.filePath(u"cache"_s));
    PreferencesStore preferences{m_data.filePath(u"preferences.sqlite"_s)};
    StudioSession session{m_photos, preferences};
    ScriptedAccount account{preferences, Scripted::signedIn};
    SharedTemplates shared{account.api(), account.session(), m_data.path()};
    MainWindow window{session, account.session(), m_photos, preferences};
};

}    // namespace

TEST_F(TemplatesTest, AreSeenOnTheCanvasBeforeTheyAreChosen)
{
    session.selectLayer(QUuid());
    settle();
    const Batch before = session.batch();
    const bool couldUndo = session.canUndo();
    const QByteArray shown = onCanvas();
    const GalleryTile tile = packaged().first();
    QSignalSpy begun(gallery(), &TemplateGallery::previewWanted);
    QSignalSpy ended(gallery(), &TemplateGallery::previewEnded);
    const auto isSaid = [&] {
        const QString canvas = window.shell()->stage()->canvas()->accessibleName();
        return std::pair(said(tile.id).contains(u"vista previa"_s),
                         canvas.contains(u"vista previa"_s));
    };
    point(tile.id);
    EXPECT_EQ(onCanvas(), shown);    // the preview waits until the pointer rests
    ASSERT_TRUE(begun.wait());
    settle();
    EXPECT_NE(onCanvas(), shown);
    EXPECT_EQ(isSaid(), std::pair(true, true));
    EXPECT_EQ(session.batch(), before);
    hover(gallery()->viewport(), QEvent::HoverLeave);
    ASSERT_TRUE(ended.wait());
    settle();
    EXPECT_EQ(onCanvas(), shown);
    EXPECT_EQ(isSaid(), std::pair(false, false));
    EXPECT_EQ(session.canUndo(), couldUndo);

    // While the keyboard focus shows a preview, turning the wheel over the canvas edits nothing.
    window.activateWindow();
    gallery()->setFocus(Qt::TabFocusReason);
    ASSERT_TRUE(begun.wait());
    QWidget* canvas = window.shell()->stage()->canvas();
    const QPointF middle = canvas->rect().center();
    QWheelEvent wheel(middle, canvas->mapToGlobal(middle), {}, {0, 120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(canvas, &wheel);
    settle();
    EXPECT_EQ(session.batch(), before);

    // Space shows the design large, and Esc closes that alone.
    focusGallery(tile.id);
    QTest::keyClick(gallery(), Qt::Key_Space);
    settle();
    auto* large = window.findChild<LargePreview*>();
    ASSERT_TRUE(large && large->isVisible());
    EXPECT_EQ(large->accessibleName(), u"Vista previa grande: "_s + tile.name);
    EXPECT_LT(large->geometry().center().x(), side()->x());
    QTest::keyClick(gallery(), Qt::Key_Escape);
    EXPECT_FALSE(large->isVisible());
    EXPECT_TRUE(gallery()->hasFocus());
    EXPECT_EQ(session.batch(), before);
    canvas->setFocus();

    session.selectAll();
    session.setText(CopySlot::title, u"Solo en esta"_s);
    settle();
    click(tile.id);
    settle();
    for (const PublicationItem& item : session.batch().items) {
        EXPECT_NE(item.layers[0].frame, before.items[0].layers[0].frame);
        EXPECT_EQ(item.shapeLayers, current().shapeLayers);    // with equal ids
    }
    EXPECT_EQ(current().layers[0].text, u"Solo en esta"_s);
    EXPECT_TRUE(gallery()->isApplied(tile.id));
    EXPECT_EQ(session.status(), u"Plantilla «%1» aplicada a 3 imágenes."_s.arg(tile.name));
    session.undo();
    EXPECT_EQ(session.batch().items[1], before.items[1]);    // one undo reverts all images
    EXPECT_EQ(session.batch().items[2], before.items[2]);
    EXPECT_EQ(current().layers[0].text, u"Solo en esta"_s);
}

TEST_F(TemplatesTest, OpenWithTheFirstPhotosAlone)
{
    EXPECT_EQ(side()->tab(), SideTab::templates);
    side()->setTab(SideTab::text);
    bool stood = false;
    QObject::connect(&session, &StudioSession::activityChanged, &window, [&] {
        const Activity* import = session.activities().find(Activity::Kind::importing);
        if (!import || import->incoming.isEmpty())
            return;
        stood = true;
        EXPECT_TRUE(window.shell()->isStage(StudioShell::Stage::empty))
            << "the old canvas beside new tiles";
    });
    window.activateWindow();
    window.shell()->stage()->canvas()->setFocus();
    session.load({QUrl::fromLocalFile(m_folder.path())});
    settle();
    EXPECT_TRUE(stood);
    EXPECT_TRUE(window.shell()->isStage(StudioShell::Stage::picture));
    EXPECT_TRUE(window.shell()->stage()->canvas()->hasFocus());
    EXPECT_EQ(side()->tab(), SideTab::text);
}

TEST_F(TemplatesTest, AreSavedRenamedAndFound)
{
    EXPECT_TRUE(own().isEmpty());
    EXPECT_FALSE(gallery()->sections().first().note.isEmpty());
    window.activateWindow();
    window.templates().saveTemplate();
    auto* name = qobject_cast<LineField*>(QApplication::focusWidget());
    ASSERT_TRUE(name);    // the field for the template's name has the focus
    EXPECT_LE(name->width(), gallery()->partRect(gallery()->partOf(own().first().id)).width());
    QTest::keyClicks(name, u"Rutas de otono"_s);
    QTest::keyClick(name, Qt::Key_Return);
    QTest::qWait(1);
    ASSERT_EQ(own().size(), 1);
    EXPECT_EQ(own().first().name, u"Rutas de otono"_s);
    EXPECT_TRUE(gallery()->isApplied(own().first().id));

    // Saves a second template while the first is being named: the typed name goes to the first.
    window.templates().saveTemplate();
    QTest::keyClicks(QApplication::focusWidget(), u"Primera"_s);
    window.templates().saveTemplate();
    QTest::qWait(1);
    EXPECT_EQ(own()[1].name, u"Primera"_s);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);    // discards the second template
    QTest::qWait(1);
    saved().removeTemplate(own().first().id);
    window.templates().saveTemplate();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    QTest::qWait(1);
    EXPECT_EQ(saved().templates().entries().size(), 1);

    auto* search = side()->templatesPanel()->findChild<LineField*>();
    search->setText(u" ÓTONO"_s);
    EXPECT_EQ(own().size(), 1);
    EXPECT_TRUE(packaged().isEmpty());
    search->setText(u"nada"_s);
    EXPECT_TRUE(gallery()->sections().isEmpty());
    auto* nothing = named<Caption>(side()->templatesPanel(), u"Ninguna plantilla se llama así."_s);
    EXPECT_TRUE(nothing && nothing->isVisible());
    search->clear();

    session.setFormat(SocialFormat::storyReel);
    settle();
    EXPECT_TRUE(own().isEmpty());    // the saved template is for another format
    EXPECT_FALSE(packaged().isEmpty());
    session.setFormat(SocialFormat::carouselPortrait);
    settle();

    // The key Delete removes the focused template, and callBackRequested() brings it back.
    focusGallery(own().first().id);
    QTest::keyClick(gallery(), Qt::Key_Delete);
    EXPECT_TRUE(saved().templates().entries().isEmpty());
    Q_EMIT side()->templatesPanel()->callBackRequested();
    EXPECT_EQ(own().size(), 1);
    // The focus stays on the same template when a new one is inserted before it.
    const QUuid older = own().first().id;
    focusGallery(older);
    saved().saveTemplate(current(), session.batch().format);
    EXPECT_EQ(gallery()->markedTile()->id, older);
    QTest::keyClick(gallery(), Qt::Key_Delete);
    EXPECT_FALSE(saved().templates().find(older));
    EXPECT_EQ(own().size(), 1);
    focusGallery(own().first().id);
    QTest::keyClick(gallery(), Qt::Key_F2);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QTest::qWait(1);
    EXPECT_EQ(QApplication::focusWidget(), gallery()) << "or the next arrow changes the image";
    focusGallery(packaged()[1].id);
    QTest::keyClick(gallery(), Qt::Key_Delete);
    EXPECT_TRUE(current().layers[0].isVisible) << "the key is meant for the design";
    QTest::keyClick(gallery(), Qt::Key_Return);
    EXPECT_TRUE(gallery()->isApplied(packaged()[1].id));
}

TEST_F(TemplatesTest, AnotherIsTriedByOneKey)
{
    window.activateWindow();
    QWidget* canvas = window.shell()->stage()->canvas();
    canvas->setFocus();
    const PublicationItem before = current();
    QTest::keyClick(canvas, Qt::Key_R);
    const PublicationItem first = current();
    EXPECT_NE(first, before);
    QTest::keyClick(canvas, Qt::Key_R);
    EXPECT_NE(current(), first);
    EXPECT_TRUE(session.status().startsWith(u"Al azar: «"_s)) << session.status().toStdString();
    session.undo();
    EXPECT_EQ(current(), before);
    settle();

    auto* search = side()->templatesPanel()->findChild<LineField*>();
    search->setFocus();
    QTest::keyClick(search, Qt::Key_R);
    EXPECT_EQ(search->text(), u"r"_s);
    EXPECT_EQ(current(), before) << "a key that is typed tries nothing";
    search->setText(packaged().first().name);
    ASSERT_EQ(gallery()->sections().size(), 1);
    canvas->setFocus();
    QTest::keyClick(canvas, Qt::Key_R);
    EXPECT_TRUE(gallery()->isApplied(packaged().first().id)) << "only those that are shown";
    QTest::keyClick(canvas, Qt::Key_R);
    EXPECT_EQ(session.status(), u"No hay otra plantilla que probar."_s);
}

TEST_F(TemplatesTest, AreMarkedAndFiltered)
{
    const QUuid first = packaged()[0].id, second = packaged()[1].id;
    click(second);
    settle();
    EXPECT_EQ(gallery()->sections().first().title, u"Usadas hace poco"_s);
    EXPECT_EQ(tiles(u"recent"_s).first().id, second);
    const GalleryPart part = gallery()->layoutOfParts().parts[gallery()->partOf(first)];
    press(*gallery()->viewport(),
          discOf(part).center() - QPoint(0, gallery()->verticalScrollBar()->value()));
    EXPECT_TRUE(packaged()[0].isFavourite);

    auto* chips = side()->templatesPanel()->findChild<TagChips*>();
    chips->choose(1);    // favourites
    ASSERT_EQ(gallery()->sections().size(), 1);
    EXPECT_EQ(packaged().size(), 1);
    EXPECT_TRUE(gallery()->sections().first().offersRandom);
    chips->choose(0);
    Q_EMIT gallery()->foldRequested(u"moltiva"_s, true);
    EXPECT_TRUE(gallery()->sections().last().isFolded);
    EXPECT_EQ(gallery()->partOf(first), -1);
    side()->templatesPanel()->findChild<LineField*>()->setText(packaged()[0].name);
    EXPECT_GE(gallery()->partOf(first), 0) << "what is found is not hidden in a folded section";
}

TEST_F(TemplatesTest, OfTheTeamAreAdministered)
{
    EXPECT_TRUE(tiles(u"team"_s).isEmpty());
    JSONVisualTemplateDefinition design =
        BuiltInTemplateLibrary().definitions(session.batch().format).first();
    design.id = QUuid::createUuid();
    design.name = u"Ladera azul"_s;
    share(design, "1");
    shared.refresh();
    ASSERT_TRUE(QTest::qWaitFor([&] { return tiles(u"team"_s).size() == 1; }, 20000));
    const QUuid id = tiles(u"team"_s).first().id;
    const auto state = [&] {
        return gallery()->sections()[1].key == u"team" ? gallery()->sections()[1].state : QString();
    };
    ASSERT_TRUE(QTest::qWaitFor([&] { return state() == u"Al día"_s; }, 20000));
    EXPECT_TRUE(tiles(u"team"_s).first().canRename);
    click(id);
    EXPECT_TRUE(gallery()->isApplied(id));

    QPointer<QMenu> menu = menuOf(id);
    ASSERT_TRUE(menu);
    EXPECT_EQ(textsOf(menu),
              (QStringList{u"Vista previa grande\tEspacio"_s, u"Añadir a favoritas"_s,
                           u"Renombrar\tF2"_s, u"Sustituir por la composición actual"_s,
                           u"Recuperar versión anterior\t3 guardadas"_s, u"Retirar"_s}));
    const auto isAsked = [&] {
        return std::ranges::any_of(account.log(), [](const QByteArray& request) {
            return request.startsWith("POST /api/publicaciones/templates/delete");
        });
    };
    menu->setActiveAction(menu->actions().last());
    QTest::keyClick(menu, Qt::Key_Return);
    ASSERT_TRUE(menu && menu->isVisible());
    EXPECT_EQ(textsOf(menu).last(), u"¿Retirar para todos?"_s);
    EXPECT_FALSE(isAsked());
    account.answer("POST /api/publicaciones/templates/delete", "{}");
    share(std::nullopt, "2");
    QTest::keyClick(menu, Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] { return tiles(u"team"_s).isEmpty(); }, 20000));
    EXPECT_TRUE(isAsked());
    EXPECT_TRUE(session.status().contains(u"«Ladera azul» retirada"_s))
        << session.status().toStdString();

    saved().saveTemplate(current(), session.batch().format);
    menu = menuOf(own().first().id);
    ASSERT_TRUE(menu);
    EXPECT_TRUE(textsOf(menu).contains(u"Compartir con el equipo"_s));
    menu->close();
}

TEST_F(TemplatesTest, GoOutAndComeInAsFiles)
{
    const QString file = m_data.filePath(u"plantilla.json"_s);
    const auto told = [this] { return window.shell()->statusLine()->accessibleName(); };
    const GalleryTile first = packaged().first();
    click(first.id);
    window.templates().exportDefinition(first.id, file);
    ASSERT_TRUE(QTest::qWaitFor([&] { return told().contains(u"exportada"_s); }, 10000));
    window.templates().importDefinition(file);
    ASSERT_TRUE(QTest::qWaitFor([&] { return own().size() == 1; }, 10000));
    EXPECT_EQ(own().first().name, first.name);
    // The current image already looks like the imported template.
    EXPECT_TRUE(gallery()->isApplied(own().first().id));
    window.templates().importDefinition(file);
    ASSERT_TRUE(QTest::qWaitFor([&] { return told().contains(u"ya está"_s); }, 10000));
    window.templates().importDefinition(m_folder.filePath(u"f0.png"_s));
    ASSERT_TRUE(QTest::qWaitFor([&] { return told().contains(u"no es una plantilla"_s); }, 10000));
    EXPECT_EQ(saved().templates().entries().size(), 1);
}

TEST_F(TemplatesTest, StylesReachTheSelectedTextOfAllSelectedImages)
{
    side()->setTab(SideTab::text);
    StyleShelf* shelf = side()->textPanel()->styles();
    session.selectLayer(current().layers[0].id);
    TextLayer title = current().layers[0];
    title.foreground = {1, 0, 0};
    title.alignment = LayerTextAlignment::trailing;
    session.editLayer(title);
    Q_EMIT shelf->saveRequested();
    ASSERT_EQ(shelf->grid()->presets().size(), 1);
    const QUuid style = shelf->grid()->presets().first().id;
    // The style has white letters, so its tile darkens the bright photo of the third image.
    title.foreground = codableWhite;
    title.hasBox = false;
    const PhotoHandle bright = session.batch().items[2].image;
    const QImage card = drawnStyle(bright, title, {80, 50}, *m_photos);
    const QImage photo = m_photos->thumbnail({bright.path, bright.digest});
    EXPECT_LT(card.pixelColor(2, 2).lightnessF(), photo.pixelColor(2, 2).lightnessF() * 0.8F);
    EXPECT_TRUE(shelf->grid()->presets().first().chosen);

    session.selectAll();
    session.selectLayer(current().layers[1].id);
    shelf->grid()->tile(style)->click();
    for (const PublicationItem& item : session.batch().items) {
        EXPECT_EQ(item.layers[1].foreground, (CodableColor{1, 0, 0}));
        EXPECT_EQ(item.layers[1].alignment, LayerTextAlignment::center);
    }
    session.undo();
    EXPECT_EQ(current().layers[1].foreground, codableWhite);
    session.selectLayer(QUuid());
    const Batch before = session.batch();
    shelf->grid()->tile(style)->click();    // does nothing: no text is selected
    EXPECT_EQ(session.batch(), before);
    Q_EMIT shelf->removeRequested(style);
    EXPECT_TRUE(shelf->grid()->presets().isEmpty());
}

TEST_F(TemplatesTest, TilesFollowWhatTheyStandFor)
{
    const QUuid id = saved().saveTemplate(current(), session.batch().format);
    settle();
    const QImage before = gallery()->picture(id);
    EXPECT_FALSE(before.isNull());
    const JSONVisualTemplateDefinition design =
        BuiltInTemplateLibrary().definitions(session.batch().format).first();
    session.applyTemplate(design.name, design.application());
    EXPECT_FALSE(gallery()->isApplied(id));
    saved().updateTemplate(id, current(), session.batch().format);
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return saved().templates().find(id)->previewPNG.has_value(); }, 20000));
    settle();
    EXPECT_NE(gallery()->picture(id), before);
    EXPECT_TRUE(gallery()->isApplied(id));
}

TEST_F(TemplatesTest, AFailedStoreIsTheLastWord)
{
    PreferencesStore nowhere(u"/proc/moltiva/p.sqlite"_s);
    TemplatesBinding templates(session, side()->templatesPanel(), side()->textPanel()->styles(),
                               m_photos, nowhere, m_data.path());
    QString told;
    QObject::connect(&templates, &TemplatesBinding::told, &templates,
                     [&](const QString& sentence) { told = sentence; });
    templates.saveTemplate();
    if (QWidget* name = QApplication::focusWidget())
        QTest::keyClick(name, Qt::Key_Return);
    QTest::qWait(1);
    EXPECT_TRUE(told.startsWith(u"No se pudieron guardar tus plantillas."_s)) << told.toStdString();
}
