// Measures how long an edit occupies the interface thread: once with a StudioSession alone, once
// with a window that shows the batch.
//
//     edit_latency PHOTOS     a folder of photos; only results for equal numbers are comparable

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

#include <QScopeGuard>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

constexpr int edits = 60;

// Changes the style of the title; each scale has another length in the stored document.
struct Restyle {
    StudioSession& session;
    int count = 0;

    void operator()(Pace pace = Pace::once)
    {
        static constexpr std::array scales{1.0, 1.15, 1.125, 1.0625, 0.71234567};
        TextLayer title = session.batch().currentItem()->layers.first();
        title.fontScale = scales[std::size_t(++count) % scales.size()];
        title.cornerRadius = 10 + count % 90;
        session.editLayer(title, LayerEdits::Copied::style, pace);
    }
};

// A session without a window. If `file` cannot be opened, storing fails at once: this measures an
// edit without the write.
struct Studio {
    Studio(const std::shared_ptr<PhotoCache>& photos, const QString& file, const QList<QUrl>& urls)
        : preferences(file), session(photos, preferences)
    {
        session.restoreWorkspaceIfNeeded();
        session.load(urls);
        turnUntil([this] { return !session.isImporting(); });
    }
    PreferencesStore preferences;
    StudioSession session;
};

}    // namespace

int main(int argc, char** argv)
{
    fixAllocatorThresholds();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const auto finish = qScopeGuard(&finishWorkers);
    dress(application, darkTheme());
    if (argc != 2) {
        std::fprintf(stderr, "edit_latency PHOTOS\n");
        return 2;
    }
    const QUrl folder = QUrl::fromLocalFile(QDir(QString::fromLocal8Bit(argv[1])).absolutePath());
    const QTemporaryDir own;
    const auto photos = std::make_shared<PhotoCache>(own.filePath(u"thumbnails"_s));

    {
        Studio studio(photos, own.filePath(u"a.sqlite"_s), {folder});
        std::printf("%lld photos\n", qlonglong(studio.session.batch().items.size()));
        Restyle restyle{studio.session};
        report("session, one selected", timed(edits, 60, [&] { restyle(); }));
        studio.session.selectAll();
        turnFor(200);
        report("session, all selected", timed(edits, 60, [&] { restyle(); }));
    }
    {
        Studio studio(photos, u"/proc/nowhere/b.sqlite"_s, {folder});
        Restyle restyle{studio.session};
        report("without the write, one selected", timed(edits, 5, [&] { restyle(); }));
        WorkspaceEncoder encoder;
        encoder.encode(studio.session.batch());
        report("of which joining the document",
               timed(edits, 5, [&] { encoder.encode(studio.session.batch()); }));
        QList<QUrl> few;
        for (qsizetype i = 0; i < std::min(qsizetype(10), studio.session.batch().items.size()); ++i)
            few.append(studio.session.batch().items[i].url);
        Studio small(photos, u"/proc/nowhere/c.sqlite"_s, few);
        Restyle restyleSmall{small.session};
        report("without the write, of 10", timed(edits, 5, [&] { restyleSmall(); }));
        WorkspaceEncoder smallEncoder;
        smallEncoder.encode(small.session.batch());
        report("of which joining the document",
               timed(edits, 5, [&] { smallEncoder.encode(small.session.batch()); }));
    }
    {
        PreferencesStore preferences(own.filePath(u"d.sqlite"_s));
        StudioSession session(photos, preferences);
        ScriptedAccount account(preferences, Scripted::signedIn);
        MainWindow window(session, account.session(), photos, preferences);
        window.resize(1440, 900);
        window.show();
        session.restoreWorkspaceIfNeeded();
        session.load({folder});
        turnUntil([&] { return !session.isImporting() && window.isIdle(); });
        session.selectAll();
        turnFor(1000);
        Restyle restyle{session};
        // One step of the slider: the edit and all events that follow, including the repaint.
        report("window, held slider, all selected", timed(edits, 16, [&] {
                   restyle(Pace::held);
                   QApplication::sendPostedEvents();
                   QApplication::processEvents();
               }));
    }
    std::printf("peak memory %.0f MB\n", double(peakMemory()) / 1e6);
    return 0;
}
