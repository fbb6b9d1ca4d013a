// Importing a folder in the real window, without a display: import_latency PHOTOS
//
// Times the first pictures on screen, the longest event on the interface thread and the whole
// import, and beside them, in the same run, one reduced decode of each photo on as many workers.
// The thumbnails on disk start empty.

#include "app/BatchColumn.h"
#include "app/MainWindow.h"
#include "app/StudioShell.h"
#include "app/Theme.h"
#include "platform/Memory.h"
#include "platform/PhotoCache.h"
#include "platform/PreferencesStore.h"
#include "platform/Workers.h"
#include "studio/BatchExport.h"
#include "studio/PhotoFolder.h"
#include "studio/StudioSession.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

// Times every event that reaches a receiver from outside another.
class TimedApplication : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        if (m_depth > 0)
            return QApplication::notify(receiver, event);
        QElapsedTimer watch;
        watch.start();
        ++m_depth;
        const bool done = QApplication::notify(receiver, event);
        --m_depth;
        milliseconds.push_back(double(watch.nsecsElapsed()) / 1e6);
        return done;
    }

    std::vector<double> milliseconds;

private:
    int m_depth = 0;
};

double reducedDecodeOfEach(const QList<QUrl>& photos)
{
    QElapsedTimer watch;
    watch.start();
    runBatch(
        photos.size(), workers().maxThreadCount(), false,
        [&](qsizetype i) {
            const auto thumbnailLevel = [](const PhotoInfo& info) {
                return coveringLevel(info.size, thumbnailSize(info.size));
            };
            decodePhoto(photos[i].toLocalFile(), thumbnailLevel);
            return ExportedFile();
        },
        [](qsizetype, const ExportedFile&) {});
    return double(watch.elapsed()) / 1000;
}

}    // namespace

int main(int argc, char** argv)
{
    settleAllocator();
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
    MainWindow window(session, cache, preferences);
    window.show();
    session.restoreWorkspaceIfNeeded();
    for (QElapsedTimer pause; !pause.isValid() || pause.elapsed() < 300;) {
        if (!pause.isValid())
            pause.start();
        QApplication::processEvents();
    }

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
    while (!window.isSettled())
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
