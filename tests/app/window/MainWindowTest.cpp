#include "app/batch/BatchBinding.h"
#include "app/controls/CostButton.h"
#include "app/export/ExportButtons.h"
#include "app/layers/SlotCard.h"
#include "app/layers/TextPanel.h"
#include "app/window/StatusLine.h"
#include "app/window/StudioMenu.h"
#include "platform/NotificationCenter.h"
#include "tests/app/window/MainWindowFixture.h"

#include <QListWidget>
#include <QMimeData>

using namespace Qt::StringLiterals;

namespace {

// What a file manager drops: the list of files and the portal's key, which not all of them give
// when they are asked for it.
class FileManagerData : public QMimeData {
public:
    explicit FileManagerData(const QUrl& file)
    {
        setUrls({file});
        setData(u"application/vnd.portal.filetransfer"_s, {});
        setData(u"application/vnd.portal.files"_s, {});
    }
    int keysAsked() const { return m_keysAsked; }

protected:
    QVariant retrieveData(const QString& format, QMetaType type) const override
    {
        m_keysAsked += format.startsWith(u"application/vnd.portal."_s) ? 1 : 0;
        return QMimeData::retrieveData(format, type);
    }

private:
    mutable int m_keysAsked = 0;
};

}    // namespace

TEST_F(MainWindowTest, anImportFillsTheColumnAndTheStage)
{
    session.load({photos(5)});
    settle();
    EXPECT_EQ(grid()->tiles().size(), 5);
    EXPECT_EQ(grid()->keptPictures(), 5);
    EXPECT_TRUE(grid()->tiles()[0].current);
    EXPECT_TRUE(window.shell()->stage()->isVisible());
    EXPECT_EQ(window.shell()->statusLine()->accessibleName(), session.status());
}

TEST_F(MainWindowTest, tileAndSlotWarnAlikeAlsoWithoutTheColumn)
{
    session.load({photos(2)});
    settle();
    const auto titleWarnings = [this] {
        return panel()->textPanel()->findChildren<SlotCard*>().first()->warnings();
    };
    const QString sentence = u"Título: contraste bajo (1; lo mínimo es 3)."_s;
    const auto paintTitleAway = [this] {
        TextLayer title = current().layers.first();
        title.hasBox = false;
        title.foreground =
            CodableColor(QColor::fromHsv(session.batch().selectedIndex * 30, 200, 200));
        session.editLayer(title);
    };
    // Ends a step of the history: the history would merge edits that follow each other quickly.
    auto endStep = [this, step = 0]() mutable { session.setObjective(QString::number(++step)); };
    ASSERT_FALSE(titleWarnings().contains(sentence));
    endStep();
    paintTitleAway();
    settle();
    EXPECT_EQ(titleWarnings(), QStringList{sentence});
    EXPECT_TRUE(grid()->tiles()[0].warnings.contains(sentence));
    EXPECT_TRUE(grid()->accessibleText(0).endsWith(u"con avisos"_s));
    EXPECT_FALSE(grid()->tiles()[1].warnings.contains(sentence));

    window.menu()->action(u"Columna del lote"_s)->trigger();
    ASSERT_FALSE(grid()->isVisible());
    session.undo();
    settle();
    EXPECT_TRUE(titleWarnings().isEmpty());
    session.nextItem();
    paintTitleAway();
    settle();
    EXPECT_EQ(titleWarnings(), QStringList{sentence});
    window.menu()->action(u"Columna del lote"_s)->trigger();
    settle();
    endStep();
    session.removeCurrentItem();
    session.undo();
    settle();
    EXPECT_EQ(titleWarnings(), QStringList{sentence}) << "back with its image";
    EXPECT_TRUE(grid()->tiles()[1].warnings.contains(sentence));
}

TEST_F(MainWindowTest, aPhotoThatIsFoundAgainIsJudgedAlsoWithoutTheColumn)
{
    session.load({photos(1)});
    settle();
    TextLayer title = current().layers.first();
    title.hasBox = false;
    title.foreground = CodableColor(QColor::fromHsv(0, 200, 200));
    session.editLayer(title);
    BatchColumn column;
    BatchBinding binding(session, &column,
                         std::make_shared<PhotoCache>(m_data.filePath(u"cold"_s)));
    const auto isMarked = [&] {
        EXPECT_TRUE(QTest::qWaitFor([&] { return binding.isIdle(); }, 30000));
        const auto warnings = binding.warningsOf(current().id);
        return std::ranges::any_of(warnings, [](const auto& w) { return w.contrast.has_value(); });
    };
    const QString path = current().image.path;
    ASSERT_TRUE(QFile::rename(path, path + u'~'));
    binding.show();
    EXPECT_FALSE(isMarked());
    ASSERT_TRUE(QFile::rename(path + u'~', path));
    binding.photoFound(current().id);
    EXPECT_TRUE(isMarked());
}

TEST_F(MainWindowTest, aTileIsDrawnAnewWhenItsItemChanges)
{
    session.load({photos(2)});
    settle();
    const QImage before = grid()->grab().toImage();
    PublicationItem item = *session.batch().currentItem();
    item.shapeLayers.append(ShapeLayer(QUuid::createUuid(), ShapeKind::rectangle, {0, 0, 1, 1}));
    session.setCurrentItem(item);
    settle();
    const QPoint corner = grid()->tileRect(0).topLeft() + QPoint(12, 12);
    EXPECT_EQ(QColor(grid()->grab().toImage().pixel(corner)), QColor(Qt::black));
    EXPECT_NE(QColor(before.pixel(corner)), QColor(Qt::black));
}

TEST_F(MainWindowTest, aBatchThatTheColumnDoesNotShowIsNotChangedFromIt)
{
    session.load({photos(12)});
    settle();
    const Batch before = session.batch();
    const QUrl more = photos(60);
    session.load({more});
    ASSERT_TRUE(QTest::qWaitFor(
        [this] {
            const Activity* import = activity(Activity::Kind::importing);
            return import && !import->incoming.isEmpty();
        },
        30000));
    Q_EMIT window.shell()->batchColumn()->clicked(0, Qt::ControlModifier);
    Q_EMIT window.shell()->batchColumn()->discardRequested();
    Q_EMIT window.shell()->batchColumn()->selectAllRequested();
    for (const QString& command : {u"Imagen siguiente"_s, u"Rectángulo"_s, u"Deshacer"_s})
        window.menu()->action(command)->trigger();
    const QWidget* several = window.shell()->topBar()->exports()->several();
    EXPECT_FALSE(several->isEnabled());
    window.menu()->action(u"Exportar todo…"_s)->trigger();
    window.menu()->action(u"Exportar actual…"_s)->trigger();
    EXPECT_FALSE(chooser());
    EXPECT_EQ(session.batch(), before);
    EXPECT_FALSE(grid()->tiles()[0].current);
    session.activities().stop(Activity::Kind::importing);
    settle();
    EXPECT_EQ(grid()->tiles().size(), 12);
    EXPECT_TRUE(grid()->tiles()[0].current);
    EXPECT_TRUE(several->isEnabled());
}

TEST_F(MainWindowTest, droppedFilesAreImported)
{
    photos(2);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(m_folder.filePath(u"f1.png"_s)),
                  QUrl(u"https://example.com/x.png"_s)});
    QDragEnterEvent enter({600, 400}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({600, 400}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &drop);
    settle();
    EXPECT_EQ(session.batch().items.size(), 1);

    QFile sheet(m_folder.filePath(u"t.CSV"_s));
    ASSERT_TRUE(sheet.open(QIODevice::WriteOnly) && sheet.write("archivo,titulo\nf1,Uno\n") > 0);
    sheet.close();
    data.setUrls({QUrl::fromLocalFile(sheet.fileName())});
    QApplication::sendEvent(&window, &enter);
    QApplication::sendEvent(&window, &drop);
    EXPECT_TRUE(QTest::qWaitFor([this] { return current().layers[0].text == u"Uno"_s; }, 30000));

    // Other spellings of a file of this machine.
    data.setData(u"text/uri-list"_s,
                 "file://localhost" + QFile::encodeName(m_folder.filePath(u"f0.png"_s)) + "\r\n" +
                     QFile::encodeName(m_folder.filePath(u"f1.png"_s)) + "\r\n");
    QApplication::sendEvent(&window, &enter);
    QApplication::sendEvent(&window, &drop);
    settle();
    EXPECT_EQ(session.batch().items.size(), 2);

    // Files that only the desktop's portal can tell; there is none here.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    data.clear();
    data.setData(u"application/vnd.portal.filetransfer"_s, QByteArray("123456\0", 7));
    enter.ignore();
    QApplication::sendEvent(&window, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QApplication::sendEvent(&window, &drop);
    EXPECT_TRUE(QTest::qWaitFor([this] {
        return told().last() == u"El escritorio no ha entregado los archivos que has soltado."_s;
    }));

    // The key is asked for only if the list does not serve, and once.
    for (const auto& [name, timesAsked] : {std::pair(u"f0.png"_s, 0), std::pair(u"no.png"_s, 1)}) {
        const FileManagerData both(QUrl::fromLocalFile(m_folder.filePath(name)));
        QDragEnterEvent entered({600, 400}, Qt::CopyAction, &both, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&window, &entered);
        QDropEvent dropped({600, 400}, Qt::CopyAction, &both, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&window, &dropped);
        EXPECT_EQ(both.keysAsked(), timesAsked);
        settle();
        EXPECT_EQ(session.batch().items.size(), 1);
    }

    QMimeData text;
    text.setText(u"hola"_s);
    QDragEnterEvent refused({600, 400}, Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
    refused.ignore();
    QApplication::sendEvent(&window, &refused);
    EXPECT_FALSE(refused.isAccepted());
}

TEST_F(MainWindowTest, aLinkToAnotherAccountIsAQuestionThatStaysUntilItIsAnswered)
{
    window.activateWindow();
    const auto post = [](const QString& link) {
        notificationCenter().post(Notification::deepLinkReceived, QUrl(link));
    };
    const auto current = [this] { return session.statusLog().current().sentence; };
    const QString question = u"¿Cambiar de cuenta con este enlace?"_s;
    post(u"moltiva://auth?token=t"_s);
    EXPECT_EQ(current(), question);
    session.setStatus(u"Otra cosa."_s);
    EXPECT_EQ(current(), question);
    const auto answer = [this](const QString& name) {
        for (QWidget* stop : window.shell()->statusLine()->focusOrder()) {
            if (stop->accessibleName() == name && stop->isVisible()) {
                stop->setFocus(Qt::TabFocusReason);
                QTest::keyClick(stop, Qt::Key_Space);
                return true;
            }
        }
        return false;
    };
    EXPECT_TRUE(answer(u"No cambiar"_s));
    EXPECT_EQ(current(), u"El enlace no se ha usado: sigues con tu cuenta."_s);
    post(u"moltiva://auth?token=t"_s);
    account.answer("POST /api/auth/desktop/exchange", ScriptedAccount::summary("Otra Persona"));
    EXPECT_TRUE(answer(u"Cambiar de cuenta"_s));
    EXPECT_TRUE(
        QTest::qWaitFor([this] { return account.session().displayName() == u"Otra Persona"_s; }));
    EXPECT_EQ(current(), u"Sesión iniciada con Google."_s);
}

TEST_F(MainWindowTest, filesFromOneAfterTheOtherStartMakeOneBatch)
{
    photos(3);
    window.open({QUrl::fromLocalFile(m_folder.filePath(u"f2.png"_s))});
    window.open({QUrl::fromLocalFile(m_folder.filePath(u"f0.png"_s))});
    window.open({QUrl::fromLocalFile(m_folder.filePath(u"f1.png"_s))});
    settle();
    ASSERT_EQ(session.batch().items.size(), 3);
    EXPECT_EQ(session.batch().items[2].filename(), u"f1"_s);
}

TEST_F(MainWindowTest, theNextStartHasThePlacesOfThisOne)
{
    window.resize(1330, 815);
    Q_EMIT window.shell()->batchWidthDragged(310);
    Q_EMIT window.shell()->panelWidthDragged(410);
    window.close();
    MainWindow next(session, account.session(), m_photos, preferences);
    // As large as the screen of 800 × 800 and the smallest window allow.
    EXPECT_EQ(next.size(), QSize(1080, 776));
    next.resize(1330, 815);
    next.show();
    EXPECT_NEAR(next.shell()->batchColumn()->width(), 310, 1);
    EXPECT_NEAR(next.shell()->sidePanel()->width(), 410, 1);
}

TEST_F(MainWindowTest, theNamesOfWhatCouldNotBeReadAreAPressAway)
{
    photos(2);
    QFile broken(m_folder.filePath(u"rota.jpg"_s));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly) && broken.write("x") == 1);
    broken.close();
    window.open({QUrl::fromLocalFile(m_folder.path())});
    settle();
    QWidget* link = window.shell()->statusLine()->focusOrder().first();
    ASSERT_TRUE(link->isVisible());
    EXPECT_EQ(link->accessibleName(), u"Ver cuáles"_s);
    link->setFocus();
    QTest::keyClick(link, Qt::Key_Space);
    const auto* list = window.findChild<QListWidget*>();
    ASSERT_TRUE(list);
    EXPECT_EQ(list->count(), 1);
    EXPECT_EQ(list->item(0)->text(), u"rota.jpg"_s);
    QTest::keyClick(list->window(), Qt::Key_Escape);
    EXPECT_FALSE(list->isVisible());
    session.load({QUrl::fromLocalFile(m_folder.filePath(u"f0.png"_s))});
    settle();
    EXPECT_FALSE(link->isVisible());
}
