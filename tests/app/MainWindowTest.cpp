#include "app/MainWindow.h"

#include "app/BatchColumn.h"
#include "app/ComposeBar.h"
#include "app/StagePanel.h"
#include "app/StudioShell.h"
#include "app/ViewBar.h"
#include "app/controls/StatusLine.h"
#include "platform/PhotoCache.h"
#include "platform/PreferencesStore.h"
#include "studio/StudioSession.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMimeData>
#include <QTemporaryDir>

#include <QtTest/QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class MainWindowTest : public ::testing::Test {
protected:
    MainWindowTest()
    {
        window.resize(1280, 800);
        window.show();
    }
    QUrl photos(int count)
    {
        for (int i = 0; i < count; ++i) {
            QImage image(60, 40, QImage::Format_RGB32);
            image.fill(QColor::fromHsv(i * 30 % 360, 200, 200));
            EXPECT_TRUE(image.save(m_folder.filePath(u"f%1.png"_s.arg(i))));
        }
        return QUrl::fromLocalFile(m_folder.path());
    }
    void settle()
    {
        for (int turn = 0; turn < 3; ++turn) {
            QTest::qWait(20);
            ASSERT_TRUE(QTest::qWaitFor([this] { return window.isSettled(); }, 30000));
        }
    }
    TileGrid* grid() { return window.shell()->batchColumn()->grid(); }
    QLineEdit* objective()
    {
        return qobject_cast<QLineEdit*>(window.shell()->composeBar()->objectiveEdit());
    }

    QTemporaryDir m_folder, m_data;
    std::shared_ptr<PhotoCache> m_photos =
        std::make_shared<PhotoCache>(m_data.filePath(u"cache"_s));
    PreferencesStore preferences{m_data.filePath(u"p.sqlite"_s)};
    StudioSession session{m_photos, preferences};
    MainWindow window{session, m_photos, preferences};
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
    EXPECT_EQ(window.shell()->statusLine()->history().last().sentence, session.status());
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

// Clicking tiles, buttons and segments leaves the focus in the field, so the edit is still going
// on.
TEST_F(MainWindowTest, anObjectiveBeingTypedSurvivesOtherChanges)
{
    session.load({photos(3)});
    settle();
    window.activateWindow();
    objective()->setFocus();
    QTest::keyClicks(objective(), u"Rebajas"_s);
    session.selectSingleIndex(2);
    session.setFormat(SocialFormat::square);
    EXPECT_EQ(objective()->text(), u"Rebajas"_s);
    QTest::keyClick(objective(), Qt::Key_Escape);
    EXPECT_EQ(session.batch().objective, u"Rebajas"_s);
    session.setObjective(u"Otra"_s);
    EXPECT_EQ(objective()->text(), u"Otra"_s);
}

TEST_F(MainWindowTest, aBatchThatTheColumnDoesNotShowIsNotChangedFromIt)
{
    session.load({photos(12)});
    settle();
    const Batch before = session.batch();
    const QUrl more = photos(60);
    session.load({more});
    ASSERT_TRUE(
        QTest::qWaitFor([this] { return !session.importProgress().accepted.isEmpty(); }, 30000));
    ASSERT_TRUE(session.isImporting());
    Q_EMIT window.shell()->batchColumn()->clicked(0, Qt::ControlModifier);
    Q_EMIT window.shell()->batchColumn()->discardRequested();
    Q_EMIT window.shell()->batchColumn()->selectAllRequested();
    EXPECT_EQ(session.batch(), before);
    EXPECT_FALSE(grid()->tiles()[0].current);
    session.stopImport();
    settle();
    EXPECT_EQ(grid()->tiles().size(), 12);
    EXPECT_TRUE(grid()->tiles()[0].current);
}

TEST_F(MainWindowTest, keysChangeTheImageUnlessAFieldHasThem)
{
    session.load({photos(3)});
    settle();
    window.activateWindow();
    QTest::keyClick(&window, Qt::Key_Right);
    EXPECT_EQ(session.batch().selectedIndex, 1);
    QTest::keyClick(&window, Qt::Key_PageDown);
    EXPECT_EQ(session.batch().selectedIndex, 2);
    objective()->setFocus();
    QTest::keyClicks(objective(), u"ab"_s);
    QTest::keyClick(objective(), Qt::Key_Left);
    QTest::keyClick(objective(), Qt::Key_Backspace);
    EXPECT_EQ(objective()->text(), u"b"_s);
    EXPECT_EQ(session.batch().selectedIndex, 2);
    QTest::keyClick(objective(), Qt::Key_PageUp);
    EXPECT_EQ(session.batch().selectedIndex, 1) << "from anywhere";
    QTest::keyClick(&window, Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(session.batch().items.size(), 2);
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

    QMimeData text;
    text.setText(u"hola"_s);
    QDragEnterEvent refused({600, 400}, Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
    refused.ignore();
    QApplication::sendEvent(&window, &refused);
    EXPECT_FALSE(refused.isAccepted());
}
