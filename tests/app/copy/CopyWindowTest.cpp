#include "app/account/AuthGateView.h"
#include "app/batch/BatchColumn.h"
#include "app/controls/Button.h"
#include "app/controls/fields/SlotEditor.h"
#include "app/copy/ComposeBar.h"
#include "app/layers/SidePanel.h"
#include "app/layers/TextPanel.h"
#include "app/window/MainWindow.h"
#include "app/window/StatusLine.h"
#include "app/window/StudioMenu.h"
#include "app/window/StudioShell.h"
#include "platform/PreferencesStore.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"
#include "tests/app/Events.h"
#include "tests/support/ScriptedAccount.h"
#include "tests/support/ScriptedWriter.h"

#include <QAction>
#include <QLineEdit>
#include <QTemporaryDir>

#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

// A window with photos, whose texts a script writes.
struct CopyWindow : ::testing::Test {
    CopyWindow()
    {
        session.setAccountSession(account.session());
        session.setCreditJournal(account.journal(), m_data.filePath(u"exports"_s));
        session.setLocalCopyWriter(writer.functions());
        session.restoreWorkspaceIfNeeded();
        window.resize(1280, 800);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitFor([this] { return window.gate()->state() == Gate::open; }));
    }
    ~CopyWindow() override { session.setLocalCopyWriter({}); }

    void load(int count)
    {
        for (int i = 0; i < count; ++i) {
            QImage image(60, 40, QImage::Format_RGB32);
            image.fill(QColor::fromHsv(i * 30 % 360, 200, 200));
            EXPECT_TRUE(image.save(m_photoFolder.filePath(u"f%1.png"_s.arg(i))));
        }
        session.load({QUrl::fromLocalFile(m_photoFolder.path())});
        EXPECT_TRUE(QTest::qWaitFor([&] { return session.batch().items.size() == count; }));
        EXPECT_TRUE(QTest::qWaitFor([this] { return window.isIdle(); }, 30'000));
        shell->sidePanel()->setTab(SideTab::text);
    }
    bool waitForWriter()
    {
        return QTest::qWaitFor([this] { return writer.isWriting(); }, 30'000);
    }
    // Answers the image at turn by its name, and waits for the next one or the end.
    void answer()
    {
        ASSERT_TRUE(waitForWriter());
        answer(ScriptedWriter::copy(writer.calls.last()->photo.fileName()));
    }
    void answer(const GeneratedCopy& copy)
    {
        const qsizetype before = writer.calls.size();
        writer.answer(copy);
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return writer.calls.size() > before || !session.isAnalyzing(); }, 30'000));
    }
    bool waitForEnd()
    {
        return QTest::qWaitFor([this] { return !session.isAnalyzing(); }, 30'000);
    }
    TileState tile(int index) { return shell->batchColumn()->grid()->tiles()[index].state; }
    QString title(int index) { return session.batch().items[index].layers.first().text; }
    TextPanel* texts() { return shell->sidePanel()->textPanel(); }

    QTemporaryDir m_photoFolder, m_data;
    std::shared_ptr<PhotoCache> photos = std::make_shared<PhotoCache>(m_data.filePath(u"cache"_s));
    PreferencesStore preferences{m_data.filePath(u"p.sqlite"_s)};
    ScriptedWriter writer;
    StudioSession session{photos, preferences};
    ScriptedAccount account{preferences, Scripted::signedIn};
    MainWindow window{session, account.session(), photos, preferences};
    StudioShell* shell = window.shell();
};

}    // namespace

TEST_F(CopyWindow, aRunShowsItselfInBarAndTilesAndStopsByKey)
{
    load(3);
    auto* objective = qobject_cast<QLineEdit*>(shell->composeBar()->objectiveEdit());
    objective->setFocus();
    QTest::keyClicks(objective, u"Rebajas"_s);
    session.selectAll();
    QTest::keyClick(objective, Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(waitForWriter());
    EXPECT_EQ(writer.calls.last()->objective, u"Rebajas"_s) << "typed, and not entered yet";
    EXPECT_EQ(tile(0), TileState::generating);
    EXPECT_EQ(tile(1), TileState::queued);
    named<QWidget>(shell->composeBar(), u"Generando 1 de 3"_s);
    EXPECT_FALSE(named<IconButton>(texts(), u"Otra propuesta"_s)->isEnabled());
    answer();
    ASSERT_TRUE(QTest::qWaitFor([this] { return tile(0) == TileState::generated; }, 30'000));
    EXPECT_EQ(title(0), u"Título f0.png"_s);
    ASSERT_TRUE(QTest::qWaitFor([this] { return tile(0) == TileState::normal; }))
        << "the tick goes by itself";
    QTest::keyClick(&window, Qt::Key_Period, Qt::ControlModifier);
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(tile(1), TileState::normal);
    EXPECT_TRUE(session.status().startsWith(u"Generación cancelada."_s));
}

TEST_F(CopyWindow, editsMeanwhileLoseNoResult)
{
    load(6);
    session.selectAll();
    window.menu()->action(u"Generar textos"_s)->trigger();
    answer();
    ASSERT_TRUE(QTest::qWaitFor([this] { return title(0) == u"Título f0.png"_s; }, 30'000));
    // Texts wait while there is something to redo, and are told beside the sentence.
    session.setText(CopySlot::tagline, u"Mío"_s);
    window.menu()->action(u"Deshacer"_s)->trigger();
    QCoreApplication::processEvents();    // the undo has ended
    answer();
    answer();
    const auto* chip = named<QWidget>(shell->statusLine(), u"2 textos esperan"_s);
    ASSERT_TRUE(chip);
    EXPECT_TRUE(chip->isVisible());
    EXPECT_TRUE(chip->toolTip().contains(u"rehacer"_s));
    EXPECT_EQ(tile(1), TileState::waiting);
    EXPECT_TRUE(shell->batchColumn()->grid()->accessibleText(1).contains(u"texto en espera"_s));
    // Another image goes, and what waited is applied where it belongs.
    session.selectSingleIndex(0);
    session.removeCurrentItem();
    ASSERT_TRUE(QTest::qWaitFor([this] { return title(0) == u"Título f1.png"_s; }, 30'000));
    answer(ScriptedWriter::missing());
    answer();
    answer();
    ASSERT_TRUE(waitForEnd());
    for (const int index : {0, 1, 3, 4})
        EXPECT_EQ(title(index), u"Título f%1.png"_s.arg(index + 1));
    EXPECT_FALSE(chip->isVisible());
    EXPECT_EQ(tile(2), TileState::unanswered);
    EXPECT_FALSE(shell->batchColumn()->grid()->tiles()[2].answer.isEmpty());

    auto* retry = named<Control>(shell->statusLine(), u"Reintentar"_s);
    ASSERT_TRUE(retry);
    retry->click();
    answer();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(title(2), u"Título f3.png"_s);
    EXPECT_NE(tile(2), TileState::unanswered);
}

TEST_F(CopyWindow, theCaptionIsEditedLikeATextAndFollowsTheImage)
{
    load(2);
    session.selectAll();
    session.copy().analyzeSelected();
    answer();
    answer();
    ASSERT_TRUE(waitForEnd());
    session.selectSingleIndex(0);
    auto* caption = named<SlotEditor>(texts(), u"Texto de la publicación"_s);
    EXPECT_EQ(caption->text(), u"Pie f0.png"_s);
    EXPECT_EQ(caption->accessibleDescription(), u"10 de 2.200 caracteres. Notas"_s);
    texts()->editCaption();
    QTest::keyClicks(caption, u"Mi pie"_s);
    EXPECT_EQ(session.batch().items[0].analysis.publicationCaption, u"Mi pie"_s);
    QTest::keyClick(caption, Qt::Key_PageDown);
    EXPECT_EQ(session.batch().selectedIndex, 1);
    EXPECT_EQ(caption->text(), u"Pie f1.png"_s);
    EXPECT_EQ(caption->textCursor().selectedText(), u"Pie f1.png"_s);
    window.menu()->action(u"Deshacer"_s)->trigger();
    EXPECT_EQ(session.batch().items[0].analysis.publicationCaption, u"Pie f0.png"_s);
}

TEST_F(CopyWindow, anotherProposalWritesThatTextAlone)
{
    load(1);
    session.selectLayer(session.batch().items[0].layers[1].id);
    const QString before = title(0);
    for (auto* proposal : texts()->findChildren<IconButton*>()) {
        if (proposal->accessibleName() == u"Otra propuesta"_s && proposal->isVisible())
            proposal->click();
    }
    answer();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(session.batch().items[0].layers[1].text, u"Subtítulo f0.png"_s);
    EXPECT_EQ(title(0), before);

    writer.notReady = u"No instalado."_s;
    Q_EMIT session.copyChanged();
    const auto* generate = named<Control>(shell->composeBar(), u"Generar"_s);
    EXPECT_FALSE(generate->isEnabled());
    EXPECT_EQ(generate->toolTip(), u"No instalado."_s);
}

TEST_F(CopyWindow, closingTheWindowStoresTheTextsThatWait)
{
    load(2);
    session.selectAll();
    QWidget* objective = shell->composeBar()->objectiveEdit();
    objective->setFocus();
    QTest::keyClicks(objective, u"Rebajas"_s);
    session.copy().analyzeSelected();
    ASSERT_TRUE(waitForWriter());
    EXPECT_EQ(writer.calls.last()->objective, u"Rebajas"_s) << "the start has ended the edit";
    session.setText(CopySlot::tagline, u"Mío"_s);
    session.undo();    // what can be redone makes results wait
    QCoreApplication::processEvents();
    answer();
    EXPECT_EQ(session.copy().waiting(), 1);
    EXPECT_TRUE(window.close());
    StudioSession next(photos, preferences);
    next.restoreWorkspaceIfNeeded();
    ASSERT_TRUE(QTest::qWaitFor([&] { return next.didRestoreWorkspace(); }, 30'000));
    ASSERT_EQ(next.batch().items.size(), 2);
    EXPECT_EQ(next.batch().items[0].layers.first().text, u"Título f0.png"_s);
}
