// Imports a folder in the real window, without a display.
//
//     import_latency PHOTOS
//
// Measures the time until the first picture is on screen, the longest event on the interface thread
// and the whole import. For comparison, measures one reduced decoding of each photo on as many
// threads as there are workers. No thumbnails are stored at the start.

#include "app/batch/BatchColumn.h"
#include "app/theme/StudioStyle.h"
#include "app/theme/Theme.h"
#include "app/window/MainWindow.h"
#include "app/window/StudioShell.h"
#include "benchmarks/Measuring.h"
#include "benchmarks/PlainExport.h"
#include "platform/Memory.h"
#include "platform/PreferencesStore.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "studio/PhotoFolder.h"
#include "studio/StudioSession.h"
#include "tests/support/ScriptedAccount.h"

#include <QScopeGuard>
#include <QTemporaryDir>

#include <numeric>

using namespace Qt::StringLiterals;

namespace {

double reducedDecodeOfEach(const QList<QUrl>& photos)
{
    QElapsedTimer watch;
    watch.start();
    runOnThreads(photos.size(), workers().maxThreadCount(), [&](qsizetype i) {
        const auto thumbnailLevel = [](const PhotoInfo& info) {
            return coveringLevel(info.size, thumbnailSize(info.size));
        };
        decodePhoto(photos[i].toLocalFile(), thumbnailLevel);
    });
    return double(watch.elapsed()) / 1000;
}

}    // namespace

int main(int argc, char** argv)
{
    fixAllocatorThresholds();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    TimedApplication application(argc, argv);
    const auto finish = qScopeGuard(&finishWorkers);
    dress(application, darkTheme());
    if (argc != 2) {
        std::fprintf(stderr, "import_latency PHOTOS\n");
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    const QTemporaryDir own;
    const auto cache = std::make_shared<PhotoCache>(own.filePath(u"thumbnails"_s));
    PreferencesStore preferences(own.filePath(u"preferences.sqlite"_s));
    StudioSession session(cache, preferences);
    ScriptedAccount account(preferences, Scripted::signedIn);
    MainWindow window(session, account.session(), cache, preferences);
    window.show();
    session.restoreWorkspaceIfNeeded();
    turnFor(300);

    const TileGrid* grid = window.shell()->batchColumn()->grid();
    double firstPicture = 0;
    application.milliseconds.clear();
    QElapsedTimer watch;
    watch.start();
    session.load({QUrl::fromLocalFile(folder)});
    while (session.isImporting()) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (firstPicture == 0 && grid->keptPictures() > 0)
            firstPicture = double(watch.elapsed()) / 1000;
    }
    const double whole = double(watch.elapsed()) / 1000;
    while (!window.isIdle())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const qint64 peak = peakMemory();
    std::vector<double>& events = application.milliseconds;
    const double busy = std::accumulate(events.begin(), events.end(), 0.0) / 1000;
    std::ranges::sort(events);
    const double decodes = reducedDecodeOfEach(photosInFolder(folder));
    std::printf("%lld photos in %.2f s, first picture after %.3f s; one reduced decode of each: "
                "%.2f s, ratio %.2f\n"
                "%zu events, %.2f s in all: 99th percentile %.2f ms, longest %.2f ms; peak memory "
                "%.0f MB\n",
                qlonglong(session.batch().items.size()), whole, firstPicture, decodes,
                whole / decodes, events.size(), busy, events[events.size() * 99 / 100],
                events.back(), double(peak) / 1e6);
    return 0;
}
