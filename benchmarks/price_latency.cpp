// Measures how long it takes after a command until the price of an export is right again, and how
// much time of the interface thread that needs. Every image of the batch is paid for.
//
//     price_latency PHOTOS     a folder; use 500 photos to compare figures

#include "benchmarks/Measuring.h"
#include "canvas/RenderFingerprint.h"
#include "platform/Memory.h"
#include "platform/PreferencesStore.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"
#include "studio/export/RenderCosts.h"

#include <QDir>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <ctime>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int samples = 40;

QList<RenderedOutput> outputsOf(const Batch& batch)
{
    QList<RenderedOutput> outputs;
    for (const PublicationItem& item : batch.items) {
        outputs.append({item,
                        {},
                        renderFingerprint({item, item.image.digest, exportSize(batch.format),
                                           designSize(batch.format)}),
                        {}});
    }
    return outputs;
}

// Processor time of this thread in milliseconds; waiting does not count.
double ownTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

// Measures `work` and the events after it, until `isRight` returns true.
template <typename Work, typename IsRight>
void measure(const char* what, Work work, IsRight isRight)
{
    std::vector<double> calls, events, waits;
    for (int i = 0; i < samples; ++i) {
        turnFor(60);
        QElapsedTimer watch;
        watch.start();
        calls.push_back(timeOf([&] { work(i); }));
        const double before = ownTime();
        while (!isRight())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        events.push_back(ownTime() - before);
        waits.push_back(double(watch.nsecsElapsed()) / 1e6);
    }
    std::printf("%s\n", what);
    report("  the command", calls);
    report("  interface thread after it", events);
    report("  until the price is right", waits);
}

// Measures RenderCosts alone, with a batch that does not belong to a session.
void measureCosts(const std::shared_ptr<PhotoCache>& photos, const Batch& paid)
{
    RenderCosts costs(photos, exportSizeOf);
    Batch batch = paid;
    const auto isRight = [&costs] { return costs.isUpToDate(); };
    const auto show = [&] { costs.scheduleRenderCostRefresh(batch, 0ms); };
    show();
    turnUntil(isRight);
    measure(
        "prices alone: the text of one",
        [&](int i) {
            batch.items.edit(i).layers[0].text = u"Otoño %1"_s.arg(i);
            show();
        },
        isRight);
    measure(
        "prices alone: the format",
        [&](int i) {
            batch.format = i % 2 == 0 ? SocialFormat::square : paid.format;
            show();
        },
        isRight);
}

void measureSession(StudioSession& session)
{
    const auto isRight = [&session] { return session.exports().areCostsUpToDate(); };
    turnUntil(isRight);
    const auto restyle = [&session](auto change) {
        TextLayer title = session.batch().currentItem()->layers[0];
        change(title);
        session.editLayer(title);
    };
    measure(
        "session: the text of one",
        [&](int i) { session.setText(CopySlot::title, u"Otoño %1"_s.arg(i)); }, isRight);
    measure(
        "session: selecting one or all",
        [&](int i) { i % 2 == 0 ? session.selectAll() : session.selectSingleIndex(i); }, isRight);
    measure(
        "session: the format there and back",
        [&](int i) {
            session.setFormat(i % 2 == 0 ? SocialFormat::square : SocialFormat::carouselPortrait);
        },
        isRight);
    session.selectAll();
    turnUntil(isRight);
    measure(
        "session: the colour of a text of all",
        [&](int i) { restyle([i](TextLayer& title) {
                         title.foreground = {1, 1, 0.02 * i};
                     }); },
        isRight);
    measure(
        "session: the size of a text of all",
        [&](int i) { restyle([i](TextLayer& title) { title.fontScale = 0.6 + 0.01 * i; }); },
        isRight);
    measure(
        "session: undoing and redoing that",
        [&](int i) { i % 2 == 0 ? session.undo() : session.redo(); }, isRight);
}

}    // namespace

int main(int argc, char** argv)
{
    fixAllocatorThresholds();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const auto finish = qScopeGuard(&finishWorkers);
    if (argc != 2) {
        std::fprintf(stderr, "price_latency PHOTOS\n");
        return 2;
    }
    const QTemporaryDir own;
    const auto photos = std::make_shared<PhotoCache>(own.filePath(u"thumbnails"_s));
    PreferencesStore preferences(own.filePath(u"a.sqlite"_s));
    StudioSession session(photos, preferences);
    session.restoreWorkspaceIfNeeded();
    session.load({QUrl::fromLocalFile(QDir(QString::fromLocal8Bit(argv[1])).absolutePath())});
    turnUntil([&] { return !session.isImporting(); });
    const int count = int(session.batch().items.size());
    if (count < samples) {
        std::fprintf(stderr, "at least %d photos are needed\n", samples);
        return 2;
    }
    for (int i = 0; i < count; ++i) {
        session.selectSingleIndex(i);
        session.setText(CopySlot::title, u"Respira otoño en los Picos número %1 y vuelve"_s.arg(i));
    }
    session.markRenderedOutputsAsPaid(outputsOf(session.batch()), {});
    turnUntil([&] { return session.exports().areCostsUpToDate(); });
    std::printf("%d photos, %lld credits\n", count,
                qlonglong(session.displayedExportAllCost().value_or(-1)));

    measureCosts(photos, session.batch());
    measureSession(session);
    return 0;
}
