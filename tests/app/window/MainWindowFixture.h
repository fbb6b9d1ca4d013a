#pragma once

#include "app/account/AuthGateView.h"
#include "app/batch/BatchColumn.h"
#include "app/controls/fields/SlotEditor.h"
#include "app/copy/ComposeBar.h"
#include "app/layers/SidePanel.h"
#include "app/stage/StagePanel.h"
#include "app/window/MainWindow.h"
#include "app/window/StudioShell.h"
#include "canvas/interaction/CanvasInteractionView.h"
#include "platform/PreferencesStore.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"
#include "tests/support/ScriptedAccount.h"

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QTemporaryDir>

#include <QtTest/QTest>
#include <gtest/gtest.h>

// A window whose user is signed in to a scripted service.
class MainWindowTest : public ::testing::Test {
protected:
    MainWindowTest()
    {
        session.setAccountSession(account.session());
        session.setCreditJournal(account.journal(), m_data.filePath(QStringLiteral("exports")));
        session.restoreWorkspaceIfNeeded();
        window.resize(1280, 800);
        window.show();
        EXPECT_TRUE(QTest::qWaitFor([this] { return window.gate()->state() == Gate::open; }));
    }
    QUrl photos(int count)
    {
        for (int i = 0; i < count; ++i) {
            QImage image(60, 40, QImage::Format_RGB32);
            image.fill(QColor::fromHsv(i * 30 % 360, 200, 200));
            EXPECT_TRUE(image.save(m_folder.filePath(QStringLiteral("f%1.png").arg(i))));
        }
        return QUrl::fromLocalFile(m_folder.path());
    }
    void settle()
    {
        for (int turn = 0; turn < 3; ++turn) {
            QTest::qWait(20);
            ASSERT_TRUE(QTest::qWaitFor([this] { return window.isIdle(); }, 30000));
        }
    }
    TileGrid* grid() { return window.shell()->batchColumn()->grid(); }
    QLineEdit* objective()
    {
        return qobject_cast<QLineEdit*>(window.shell()->composeBar()->objectiveEdit());
    }

    CanvasInteractionView* canvas() { return window.shell()->stage()->canvas(); }
    SidePanel* panel() { return window.shell()->sidePanel(); }
    // Presses F2, which opens the editor of the selected text.
    SlotEditor* editSelected()
    {
        window.activateWindow();
        canvas()->setFocus();
        QTest::keyClick(&window, Qt::Key_F2);
        return qobject_cast<SlotEditor*>(QApplication::focusWidget());
    }
    const PublicationItem& current() { return *session.batch().currentItem(); }
    QFileDialog* chooser()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return window.findChild<QFileDialog*>();
    }
    void choose(const QString& path)
    {
        QFileDialog* dialog = chooser();
        ASSERT_TRUE(dialog);
        dialog->setOption(QFileDialog::DontConfirmOverwrite);
        dialog->setDirectory(QFileInfo(path).path());
        if (dialog->acceptMode() == QFileDialog::AcceptSave)
            dialog->selectFile(path);
        static_cast<QDialog*>(dialog)->accept();
    }
    void answerReservations()
    {
        account.answer("POST /api/credits/social-copy/reserve",
                       R"({"ok":true,"balance":4230,"cost":50})");
    }
    // Starts an export that then waits for the answer to its reservation of credits.
    void holdAtCharging()
    {
        answerReservations();
        account.hold();
        session.exportItem(session.batch().items[1].id, m_data.filePath(QStringLiteral("f1.png")));
        ASSERT_TRUE(QTest::qWaitFor(
            [this] {
                const Activity* running = activity(Activity::Kind::exporting);
                return running && !running->fraction();
            },
            30000));
    }
    QStringList told()
    {
        QStringList sentences;
        for (const StatusEntry& entry : session.statusLog().entries())
            sentences.append(entry.sentence);
        return sentences;
    }
    const Activity* activity(Activity::Kind kind) { return session.activities().find(kind); }

    QTemporaryDir m_folder, m_data;
    std::shared_ptr<PhotoCache> m_photos =
        std::make_shared<PhotoCache>(m_data.filePath(QStringLiteral("cache")));
    PreferencesStore preferences{m_data.filePath(QStringLiteral("p.sqlite"))};
    StudioSession session{m_photos, preferences};
    ScriptedAccount account{preferences, Scripted::signedIn};
    MainWindow window{session, account.session(), m_photos, preferences};
};
