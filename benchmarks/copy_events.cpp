// Generates the copy of a batch in the real window, without a display, while a script edits, drags,
// undoes and at last imports the photos again. Measures each event on the interface thread.
//
//     copy_events PHOTOS     a folder of photos
//
// The writer is scripted: it answers some milliseconds after it was asked, so that the figures are
// those of the window and not of an engine.

#include "app/theme/StudioStyle.h"
#include "app/theme/Theme.h"
#include "app/window/MainWindow.h"
#include "benchmarks/Measuring.h"
#include "platform/Memory.h"
#include "platform/PreferencesStore.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"
#include "tests/support/ScriptedAccount.h"
#include "tests/support/ScriptedWriter.h"

#include <QFileInfo>
#include <QScopeGuard>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

constexpr int answerTime = 40, actionPause = 15;    // milliseconds

// Does one of the things that a user does meanwhile, in turn.
class Meddler {
public:
    explicit Meddler(StudioSession& session) : m_session(session) {}

    void act()
    {
        const Batch& batch = m_session.batch();
        if (batch.items.isEmpty())
            return;
        switch (++m_step % 16) {
        case 0:
            return m_session.selectSingleIndex(int(m_step / 16 % batch.items.size()));
        case 1:
        case 2:
        case 3:
            return m_session.setText(CopySlot::subtitle, u"Escrito %1"_s.arg(m_step), Pace::held);
        case 5:
            return m_session.beginCanvasHistoryEdit();
        case 6:
        case 7:
        case 8:
            return drag();
        case 9:
            return m_session.endCanvasHistoryEdit(batch.currentItem()->layers.first().id);
        case 11:
            return m_session.undo();
        case 13:
            return m_session.redo();
        case 14:
            return m_session.selectAll();
        default:
            return;
        }
    }

private:
    void drag()
    {
        PublicationItem item = *m_session.batch().currentItem();
        item.layers.first().frame.x = 0.05 + 0.01 * (m_step % 10);
        m_session.commitCanvasItem(item);
    }

    StudioSession& m_session;
    int m_step = 0;
};

}    // namespace

int main(int argc, char** argv)
{
    fixAllocatorThresholds();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    NamingApplication application(argc, argv);
    const auto finish = qScopeGuard(&finishWorkers);
    dress(application, darkTheme());
    if (argc != 2) {
        std::fprintf(stderr, "copy_events PHOTOS\n");
        return 2;
    }
    const QUrl folder = QUrl::fromLocalFile(QDir(QString::fromLocal8Bit(argv[1])).absolutePath());
    const QTemporaryDir own;
    const auto photos = std::make_shared<PhotoCache>(own.filePath(u"thumbnails"_s));
    PreferencesStore preferences(own.filePath(u"preferences.sqlite"_s));
    StudioSession session(photos, preferences);
    ScriptedAccount account(preferences, Scripted::signedIn);
    ScriptedWriter writer;
    session.setLocalCopyWriter(writer.functions());
    MainWindow window(session, account.session(), photos, preferences);
    window.resize(1440, 900);
    window.show();
    session.restoreWorkspaceIfNeeded();
    session.load({folder});
    turnUntil([&] { return !session.isImporting() && window.isIdle(); });
    session.selectAll();
    turnFor(1000);

    QTimer answering;
    answering.callOnTimeout([&] {
        if (writer.isWriting())
            writer.answer(
                ScriptedWriter::copy(QFileInfo(writer.calls.last()->photo.path()).baseName()));
    });
    answering.start(answerTime);
    Meddler meddler(session);
    QTimer acting;
    acting.callOnTimeout([&] { meddler.act(); });

    application.milliseconds.clear();
    session.copy().analyzeSelected();
    turnUntil([&] { return !session.isAnalyzing(); });
    tellEvents("run alone", application.milliseconds);

    session.copy().analyzeSelected();
    acting.start(actionPause);
    turnUntil([&] { return !session.isAnalyzing(); });
    tellEvents("run with edits, drags and undo", application.milliseconds);

    session.selectAll();
    session.copy().analyzeSelected();
    turnFor(500);
    session.load({folder});
    turnUntil([&] { return !session.isAnalyzing() && !session.isImporting(); });
    acting.stop();
    turnUntil([&] { return window.isIdle(); });
    tellEvents("run with edits and an import", application.milliseconds);
    std::printf("%lld photos; peak memory %.0f MB\n", qlonglong(session.batch().items.size()),
                double(peakMemory()) / 1e6);
    return 0;
}
