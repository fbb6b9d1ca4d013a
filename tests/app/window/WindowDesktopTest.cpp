#include "app/controls/fields/LineField.h"
#include "app/presets/TemplateGallery.h"
#include "app/presets/TemplatesPanel.h"
#include "app/stage/EmptyState.h"
#include "app/window/FileIntake.h"
#include "app/window/KeysSheet.h"
#include "app/window/StudioMenu.h"
#include "tests/app/Events.h"
#include "tests/app/window/MainWindowFixture.h"

#include <QAction>
#include <QMenu>
#include <QSignalSpy>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

// The smallest rectangle around all pixels that differ.
QRect difference(const QImage& one, const QImage& other)
{
    QRect around;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            if (one.pixel(x, y) != other.pixel(x, y))
                around |= QRect(x, y, 1, 1);
        }
    }
    return around;
}

}    // namespace

// Compares a window that was dark with one that was light from the beginning.
TEST_F(MainWindowTest, aChangeOfThemeReachesEverything)
{
    QApplication::setCursorFlashTime(0);
    // Each in front: the key hints are those of the focus.
    const auto picture = [](MainWindow& shown) {
        shown.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&shown));
        EXPECT_TRUE(QTest::qWaitFor([&] { return shown.isIdle(); }, 30000));
        return shown.grab().toImage();
    };
    const auto expectSame = [&](const char* state, const auto& prepare) {
        window.menu()->action(u"Oscuro")->trigger();
        panel()->setTab(SideTab::text);
        prepare(window);
        settle();
        const QImage dark = picture(window);
        window.menu()->action(u"Claro")->trigger();
        MainWindow other(session, account.session(), m_photos, preferences);
        other.resize(window.size());
        other.show();
        ASSERT_TRUE(QTest::qWaitFor([&] { return other.gate()->state() == Gate::open; }));
        other.shell()->sidePanel()->setTab(SideTab::text);
        prepare(other);
        settle();
        ASSERT_TRUE(QTest::qWaitFor([&] { return other.isIdle(); }, 30000));
        const QImage light = picture(window);
        EXPECT_NE(light, dark) << state;
        const QRect different = difference(light, picture(other));
        EXPECT_EQ(different, QRect()) << state << ", from " << different.x() << " " << different.y()
                                      << ", " << different.width() << " x " << different.height();
    };
    expectSame("empty", [](MainWindow&) {});
    session.load({photos(3)});
    settle();
    expectSame("texts", [](MainWindow&) {});
    expectSame("shapes",
               [](MainWindow& shown) { shown.shell()->sidePanel()->setTab(SideTab::shapes); });
    expectSame("templates",
               [](MainWindow& shown) { shown.shell()->sidePanel()->setTab(SideTab::templates); });
    session.setAppSettingsPresented(true);
    expectSame("settings", [](MainWindow&) {});
    session.setAppSettingsPresented(false);
    window.menu()->action(u"Oscuro")->trigger();
}

TEST_F(MainWindowTest, everyKeyIsInTheListOfKeys)
{
    for (const MenuCommand& command : window.menu()->commands()) {
        const bool hasKey = !command.keys.isEmpty() || !command.shownKey.isEmpty();
        EXPECT_EQ(command.topic != KeyTopic::none, hasKey) << qPrintable(command.text);
    }
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    window.menu()->action(u"Atajos de teclado"_s)->trigger();
    auto* keys = window.findChild<KeysSheet*>();
    ASSERT_TRUE(keys && keys->isPresented());
    EXPECT_EQ(window.focusWidget(), keys->search());
    const QList<KeyRow> images = keys->shown().first().rows;
    EXPECT_EQ(images.value(0).text, u"Imagen anterior, siguiente"_s);
    EXPECT_EQ(images.value(1).text, u"Desde cualquier sitio"_s);
    type(*keys->search(), Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.focusWidget() == keys; }));
    type(*keys, Qt::Key_Escape);
    EXPECT_FALSE(keys->isPresented());

    window.menu()->action(u"Atajos de teclado"_s)->trigger();
    EXPECT_TRUE(keys->isPresented());
    EXPECT_FALSE(window.menu()->action(u"Importar imágenes…"_s)->isEnabled());
    type(*keys->search(), Qt::Key_Escape);
    EXPECT_FALSE(keys->isPresented());
    EXPECT_TRUE(window.menu()->action(u"Importar imágenes…"_s)->isEnabled());
}

TEST_F(MainWindowTest, filesOfADropThatComeUnderASheetWaitUntilItCloses)
{
    window.menu()->action(u"Atajos de teclado"_s)->trigger();
    Q_EMIT window.findChild<FileIntake*>()->received({photos(2)});
    EXPECT_FALSE(session.isImporting());
    type(*window.findChild<KeysSheet*>()->search(), Qt::Key_Escape);
    settle();
    EXPECT_EQ(session.batch().items.size(), 2);
}

TEST_F(MainWindowTest, whatWasImportedIsOfferedAgain)
{
    const QUrl folder = photos(2);
    window.open({folder});
    settle();
    Q_EMIT window.menu()->menu()->aboutToShow();
    QAction* first = window.menu()->action(u"Reciente 1"_s);
    EXPECT_EQ(first->text(), QFileInfo(folder.toLocalFile()).fileName());
    EXPECT_FALSE(window.menu()->action(u"Reciente 2"_s)->isVisible());
    session.removeCurrentItem();
    settle();
    const auto holds = [this](int images) {
        return QTest::qWaitFor([&] { return session.batch().items.size() == images; }, 30000);
    };
    first->trigger();
    EXPECT_FALSE(session.isImporting()) << "the disk was waited for";
    EXPECT_TRUE(holds(2));

    auto* chip = named<Control>(window.shell()->emptyState(), first->text());
    ASSERT_TRUE(chip);
    EXPECT_EQ(chip->toolTip(), folder.toLocalFile());
    ASSERT_TRUE(QDir(folder.toLocalFile()).removeRecursively());
    chip->click();
    const QString lost = u"No se encuentra «%1»."_s.arg(first->text());
    EXPECT_TRUE(QTest::qWaitFor([&] { return told().last() == lost; }));
    EXPECT_EQ(session.batch().items.size(), 2);
    const auto isMarked = [this] {
        auto* now = window.shell()->emptyState()->findChildren<Control*>().last();
        return now->toolTip().endsWith(u"No se encuentra"_s);
    };
    EXPECT_TRUE(QTest::qWaitFor(isMarked));

    const QString other = m_data.filePath(u"otra.png"_s);
    ASSERT_TRUE(QImage(40, 40, QImage::Format_RGB32).save(other));
    chip->click();
    window.open({QUrl::fromLocalFile(other)});
    EXPECT_TRUE(holds(1));
    settle();
    EXPECT_EQ(told().count(lost), 1) << "told of a place that nobody waits for any more";
}

TEST_F(MainWindowTest, aWindowOnAScreenWithMorePixelsIsDrawnAnew)
{
    ASSERT_EQ(QGuiApplication::screens().size(), 2);
    session.load({photos(2)});
    settle();
    TemplateGallery* templates = panel()->templatesPanel()->gallery();
    const QSize tile = grid()->picturePixels(), canvas = window.shell()->stage()->pictureSize();
    const QSize preset = templates->picturePixels();
    QSignalSpy drawnAnew(templates, &TemplateGallery::picturesWanted);
    window.windowHandle()->setScreen(QGuiApplication::screens().last());
    ASSERT_EQ(window.devicePixelRatioF(), 2);
    settle();
    EXPECT_EQ(grid()->picturePixels(), tile * 2);
    EXPECT_EQ(window.shell()->stage()->pictureSize().width() / 2, canvas.width());
    EXPECT_EQ(templates->picturePixels(), preset * 2);
    ASSERT_FALSE(drawnAnew.isEmpty());
    EXPECT_GE(drawnAnew.first().first().value<QList<QUuid>>().size(), 4)
        << "the templates that are seen";
}
