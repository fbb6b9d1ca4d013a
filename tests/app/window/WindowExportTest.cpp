#include "app/controls/CostButton.h"
#include "app/export/ExportButtons.h"
#include "app/window/StatusBinding.h"
#include "app/window/StatusLine.h"
#include "app/window/StudioMenu.h"
#include "tests/app/Events.h"
#include "tests/app/window/MainWindowFixture.h"

#include <QAction>
#include <QDesktopServices>
#include <QListWidget>
#include <QMenu>

using namespace Qt::StringLiterals;

TEST_F(MainWindowTest, anExportNeverGoesOverAPhotoOfTheBatch)
{
    const QUrl folder = photos(3);
    const QString photo = m_folder.filePath(u"f1.png"_s), alias = m_data.filePath(u"a.png"_s);
    const QString target = m_data.filePath(u"t.png"_s), linked = m_folder.filePath(u"f2.png"_s);
    ASSERT_TRUE(QFile::link(photo, alias));
    ASSERT_TRUE(QFile::rename(linked, target) && QFile::link(target, linked));
    session.load({folder});
    settle();
    ASSERT_EQ(session.batch().items.size(), 3);
    for (const QString& path : {photo, alias, target}) {
        session.setStatus({});
        window.menu()->action(u"Exportar actual…"_s)->trigger();
        EXPECT_TRUE(chooser()->selectedFiles().value(0).endsWith(u"/f0-publicacion.png"_s));
        choose(path);
        EXPECT_EQ(told().last(), u"Ese archivo es una foto del lote: elige otro nombre."_s);
    }
    EXPECT_FALSE(session.isExporting());
}

TEST_F(MainWindowTest, whateverNameIsChosenBecomesThatOfOnePngFile)
{
    answerReservations();
    photos(1);
    const QString quoted = m_folder.filePath(u"5\" x 7\".png"_s);
    ASSERT_TRUE(QFile::rename(m_folder.filePath(u"f0.png"_s), quoted));
    session.load({QUrl::fromLocalFile(quoted)});
    settle();
    const auto chooseVersion = [this] {
        window.menu()->action(u"Exportar actual…"_s)->trigger();
        EXPECT_EQ(chooser()->selectedFiles().size(), 1);
        choose(m_data.filePath(u"foto.v2"_s));
    };
    chooseVersion();
    const QString written = m_data.filePath(u"foto.v2.png"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !session.isExporting(); }, 30000));
    EXPECT_TRUE(QFile::exists(written));
    chooseVersion();
    EXPECT_FALSE(session.isExporting()) << "nobody was asked about the file that is there";
    ASSERT_TRUE(chooser());
    EXPECT_EQ(chooser()->selectedFiles(), QStringList{written});
    choose(written);
    EXPECT_TRUE(session.isExporting());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !session.isExporting(); }, 30000));
}

TEST_F(MainWindowTest, whatIsExportedIsSettledWhenTheChooserOpens)
{
    session.load({photos(4)});
    settle();
    session.selectItem(2, Qt::ShiftModifier);
    window.menu()->action(u"Exportar todo…"_s)->trigger();
    session.selectSingleIndex(3);
    choose(m_data.path() + u"/."_s);
    ASSERT_TRUE(session.isExporting());
    EXPECT_EQ(activity(Activity::Kind::exporting)->total, 3);
    session.activities().stop(Activity::Kind::exporting);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !session.isExporting(); }, 30000));
}

TEST_F(MainWindowTest, aKeyThatClosedAChooserAndIsStillHeldDoesNothing)
{
    session.load({photos(1)});
    settle();
    // The list of names that typing into a chooser opens goes with it: it would keep the focus.
    window.menu()->action(u"Importar carpeta…"_s)->trigger();
    EXPECT_TRUE(chooser()->nameFilters().filter(u"png"_s).isEmpty())
        << "the desktop's dialog filters folders too";
    auto* names = new QListWidget(chooser());
    names->setWindowFlag(Qt::Popup);
    names->show();
    EXPECT_EQ(QApplication::activePopupWidget(), names);
    chooser()->reject();
    EXPECT_FALSE(QApplication::activePopupWidget());
    session.selectLayer(current().layers[0].id);
    window.activateWindow();
    canvas()->setFocus();
    for (const int key : {Qt::Key_Return, Qt::Key_Escape}) {
        for (QWidget* receiver : QList<QWidget*>{canvas(), &window}) {
            QKeyEvent held(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
            QApplication::sendEvent(receiver, &held);
            EXPECT_FALSE(panel()->textPanel()->editedSlot());
            EXPECT_EQ(session.batch().selectedLayerID, current().layers[0].id);
        }
    }
}

TEST_F(MainWindowTest, exportsAreOfferedForWhatIsSelected)
{
    const auto entry = [this](const QString& command) {
        Q_EMIT window.menu()->menu()->aboutToShow();
        return window.menu()->action(command);
    };
    EXPECT_FALSE(entry(u"Exportar actual…"_s)->isEnabled());
    session.load({photos(4)});
    settle();
    EXPECT_EQ(entry(u"Exportar todo…"_s)->text(), u"Exportar todo…"_s);
    const auto* exports = window.shell()->topBar()->exports();
    const auto costs = [&] {
        EXPECT_TRUE(QTest::qWaitFor([&] { return session.exports().areCostsUpToDate(); }, 30000));
        return std::pair(exports->current()->cost().credits, exports->several()->cost().credits);
    };
    EXPECT_EQ(costs(), std::pair(std::optional<qint64>(50), std::optional<qint64>(200)));
    session.selectItem(2, Qt::ShiftModifier);
    EXPECT_EQ(costs(), std::pair(std::optional<qint64>(50), std::optional<qint64>(150)));
    EXPECT_EQ(entry(u"Exportar todo…"_s)->text(), u"Exportar 3…"_s);
    EXPECT_EQ(window.shell()->topBar()->exports()->several()->accessibleName(), u"Exportar 3"_s);
    EXPECT_TRUE(entry(u"Exportar actual…"_s)->isEnabled());
    EXPECT_FALSE(entry(u"Pegar estilo"_s)->isEnabled());
    session.copyStyle();
    EXPECT_TRUE(entry(u"Pegar estilo"_s)->isEnabled());
}

TEST_F(MainWindowTest, textsThatWereNeverWrittenAreToldBeforeAnExportIsCharged)
{
    session.load({photos(2)});
    settle();
    answerReservations();
    session.exportItem(session.batch().items[1].id, m_data.filePath(u"f1.png"_s));
    const QString notice = noticeOfExport(session.batch().items.mid(1, 1));
    EXPECT_FALSE(notice.isEmpty());
    EXPECT_EQ(session.status(), notice);
    EXPECT_FALSE(told().contains(u"Descontando 50 créditos..."_s));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !session.isExporting(); }, 30000));
    const QUuid exported = session.batch().items[1].id;
    EXPECT_TRUE(QTest::qWaitFor([&] { return session.exports().isPaid(exported); }, 30000));
    EXPECT_TRUE(told().contains(notice));
}

TEST_F(MainWindowTest, stoppingWhileItIsPaidGivesTheCreditsBack)
{
    session.load({photos(3)});
    settle();
    account.answer("POST /api/credits/social-copy/refund",
                   R"({"ok":true,"balance":4280,"cost":50})");
    holdAtCharging();
    QWidget* stop = window.shell()->statusLine()->focusOrder().last();
    press(*stop, stop->rect().center());
    account.release();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !session.isExporting(); }, 30000));
    EXPECT_FALSE(QFile::exists(m_data.filePath(u"f1.png"_s)));
    EXPECT_FALSE(session.exports().isPaid(session.batch().items[1].id));
    EXPECT_TRUE(std::ranges::any_of(account.log(), [](const QByteArray& request) {
        return request.startsWith("POST /api/credits/social-copy/refund");
    }));
}

TEST_F(MainWindowTest, theKeysOfExportsActFromEverywhere)
{
    session.load({photos(2)});
    settle();
    const auto chooserAfter = [this](QWidget* focused, Qt::KeyboardModifiers modifiers) {
        QTest::keyClick(focused, Qt::Key_E, modifiers);
        auto* dialog = window.findChild<QFileDialog*>();
        const QString accept = dialog ? dialog->labelText(QFileDialog::Accept) : u"none"_s;
        const QString title = dialog ? dialog->windowTitle() : QString();
        if (dialog)
            dialog->reject();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return title + u": "_s + accept;
    };
    window.activateWindow();
    objective()->setFocus();
    EXPECT_EQ(chooserAfter(objective(), Qt::ControlModifier | Qt::ShiftModifier),
              u"Exportar imágenes: Exportar aquí"_s);
    const QString before = session.status();
    for (QWidget* focused : QList<QWidget*>{objective(), editSelected(), canvas()}) {
        ASSERT_TRUE(focused);
        window.activateWindow();
        focused->setFocus();
        EXPECT_TRUE(chooserAfter(focused, Qt::ControlModifier).startsWith(u"Exportar imagen:"_s))
            << focused->metaObject()->className();
    }
    EXPECT_EQ(session.status(), before) << "cancelling is silent";
}

TEST_F(MainWindowTest, anExportIsShownFromItsBeginningToItsFiles)
{
    session.load({photos(3)});
    settle();
    const auto* exports = window.shell()->topBar()->exports();
    StatusLine* line = window.shell()->statusLine();
    QWidget* link = line->focusOrder().first();
    QSet<QString> seen;
    QObject::connect(&account.session(), &AccountSession::changed, [&] {
        for (const QString& sentence : told())
            seen.insert(sentence);
    });
    holdAtCharging();
    EXPECT_FALSE(exports->current()->isEnabled());
    EXPECT_EQ(session.statusLog().current().kind, StatusKind::working);
    account.release();
    EXPECT_TRUE(QTest::qWaitFor([&] { return link->isVisible(); }, 30000));
    EXPECT_TRUE(exports->current()->isEnabled());
    EXPECT_TRUE(QTest::qWaitFor([&] { return grid()->tiles()[1].paid; }, 30000));
    EXPECT_FALSE(grid()->tiles()[0].paid);
    EXPECT_TRUE(grid()->accessibleText(1).endsWith(u"pagada"_s));
    EXPECT_FALSE(seen.contains(u"50 créditos reservados."_s));
    session.setAccountPanel(AccountPanelDestination::credits);
    for (const QWidget* widget : window.findChildren<QWidget*>())
        EXPECT_NE(widget->accessibleName(), u"50 créditos reservados."_s);
    session.setAccountPanel(std::nullopt);
    EXPECT_FALSE(seen.contains(u"Conectando con tu cuenta…"_s));
    press(*link, link->rect().center());    // fails: the platform "offscreen" cannot open folders
    EXPECT_EQ(session.status(), u"No se ha podido abrir la carpeta."_s);
    EXPECT_FALSE(link->isVisible());
}

TEST_F(MainWindowTest, whatElseIsToldDuringAnExportStaysAndLeavesItsBar)
{
    session.load({photos(3)});
    settle();
    StatusLine* line = window.shell()->statusLine();
    const QWidget* stop = line->focusOrder().last();
    holdAtCharging();
    session.setStatus(u"No se pudo guardar."_s, StatusKind::error);
    EXPECT_EQ(session.statusLog().current().kind, StatusKind::error);
    EXPECT_TRUE(stop->isVisible());
    account.session().refresh();
    account.release();
    EXPECT_TRUE(QTest::qWaitFor(
        [this] { return !session.isExporting() && !account.session().isWorking(); }, 30000));
    EXPECT_FALSE(stop->isVisible());
    EXPECT_TRUE(told().contains(u"No se pudo guardar."_s));
    EXPECT_TRUE(told().contains(u"Cuenta actualizada."_s));
}

struct FolderOpener : QObject {
    Q_OBJECT
public:
    FolderOpener() { QDesktopServices::setUrlHandler(u"file"_s, this, "open"); }
    ~FolderOpener() override { QDesktopServices::unsetUrlHandler(u"file"_s); }
    Q_INVOKABLE void open(const QUrl& url) { opened.append(url.toLocalFile()); }
    QStringList opened;
};

TEST_F(MainWindowTest, aFolderThatIsGoneIsNotOpened)
{
    FolderOpener opener;
    const QTemporaryDir folder;
    QWidget* link = window.shell()->statusLine()->focusOrder().first();
    session.setStatus(u"Exportada."_s, StatusKind::done, {.folder = folder.path()});
    press(*link, link->rect().center());
    EXPECT_EQ(opener.opened, QStringList{folder.path()});
    ASSERT_TRUE(QDir(folder.path()).removeRecursively());
    press(*link, link->rect().center());
    EXPECT_EQ(opener.opened.size(), 1);
    EXPECT_EQ(session.status(), u"No se ha podido abrir la carpeta."_s);
}

TEST_F(MainWindowTest, wantOfCreditsLeadsToBuyingThem)
{
    session.load({photos(3)});
    settle();
    account.answer("GET /api/auth/me", ScriptedAccount::summary("Ana", 40));
    account.session().refresh();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !account.session().isWorking(); }, 30000));
    session.exportAll(m_data.path());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !session.isExporting(); }, 30000));
    const StatusEntry last = session.statusLog().current();
    EXPECT_EQ(last.sentence, u"Necesitas 150 créditos para descargar estas imágenes."_s);
    QWidget* link = window.shell()->statusLine()->focusOrder().first();
    EXPECT_EQ(link->accessibleName(), u"Comprar créditos"_s);
    press(*link, link->rect().center());
    EXPECT_EQ(session.accountPanel(), AccountPanelDestination::credits);
}

TEST_F(MainWindowTest, closingWaitsForTheExportToStop)
{
    session.load({photos(3)});
    settle();
    session.exportAll(m_data.path());
    ASSERT_TRUE(session.isExporting());
    window.close();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(told().last(), u"Terminando la exportación antes de cerrar…"_s);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window.isVisible(); }, 4000));
    EXPECT_FALSE(session.isExporting());
}

TEST_F(MainWindowTest, closingDoesNotWaitForEver)
{
    session.load({photos(3)});
    settle();
    holdAtCharging();
    window.status().setLongestWait(std::chrono::milliseconds(50));
    window.close();
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window.isVisible(); }, 4000));
    EXPECT_TRUE(session.isExporting());
    account.release();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !session.isExporting(); }, 30000));
}

TEST_F(MainWindowTest, aLogoutSavesAndWaitsForWhatIsBeingPaid)
{
    session.load({photos(3)});
    settle();
    objective()->setFocus();
    QTest::keyClicks(objective(), u"Verano"_s);
    session.exportAll(m_data.path());
    ASSERT_TRUE(session.isExporting());
    window.settleBeforeLogout();
    EXPECT_FALSE(session.isExporting());
    EXPECT_TRUE(window.isVisible()) << "the logout may be called off";
    StudioSession next(m_photos, preferences);
    next.restoreWorkspaceIfNeeded();
    EXPECT_TRUE(QTest::qWaitFor([&] { return next.didRestoreWorkspace(); }, 30000));
    EXPECT_EQ(next.batch().objective, u"Verano"_s);
}

#include "WindowExportTest.moc"
