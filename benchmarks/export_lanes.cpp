// Exports a folder as the window and `moltiva export` do: imports, renders, pays and writes. The
// account is scripted and agrees to the payment at once.
//
//     export_lanes PHOTOS OUT [--jobs N] [--format KEY]

#include "account/AccountSession.h"
#include "platform/Memory.h"
#include "platform/PreferencesStore.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "studio/PhotoFolder.h"
#include "studio/PhotoImport.h"
#include "studio/export/ExportOperation.h"
#include "studio/export/ExportPaths.h"
#include "tests/support/ScriptedAccount.h"

#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

// Processor time of all threads of this process, in seconds.
double processorTime()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return double(time.tv_sec) + double(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

struct Lap {
    double seconds = 0, processor = 0;
};

template <typename Work>
Lap timed(Work work)
{
    QElapsedTimer watch;
    watch.start();
    const double before = processorTime();
    work();
    return {double(watch.nsecsElapsed()) / 1e9, processorTime() - before};
}

}    // namespace

int main(int argc, char** argv)
{
    fixAllocatorThresholds();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const auto finish = qScopeGuard(&finishWorkers);
    QCommandLineParser parser;
    const QCommandLineOption jobs(u"jobs"_s, u"at once; 0: as many as the product"_s, u"n"_s,
                                  u"0"_s);
    const QCommandLineOption formatKey(u"format"_s, u"template key"_s, u"key"_s,
                                       u"carousel-portrait"_s);
    parser.addOptions({jobs, formatKey});
    parser.process(application);
    const auto format = fromTemplateKey(parser.value(formatKey));
    if (parser.positionalArguments().size() != 2 || !format) {
        std::fprintf(stderr, "export_lanes PHOTOS OUT [--jobs N] [--format KEY]\n");
        return 2;
    }
    const QString out = parser.positionalArguments().at(1);
    QDir().mkpath(out);
    const QList<QUrl> photos = photosInFolder(parser.positionalArguments().at(0));

    const QTemporaryDir own;
    PreferencesStore preferences(own.filePath(u"a.sqlite"_s));
    ScriptedAccount account(preferences, Scripted::signedIn);
    account.answer("GET /api/auth/me", ScriptedAccount::summary("Lucía", 1'000'000));
    account.answer("POST /api/credits/social-copy/reserve",
                   R"({"balance":1000000,"cost":50,"ok":true})");
    QCoro::waitFor(account.session().bootstrap());
    const auto cache = std::make_shared<PhotoCache>(own.filePath(u"thumbnails"_s));

    ExportRequest request;
    const Lap look = timed([&] {
        const auto looked = QCoro::waitFor(PhotoImport::importPhotos(
            photos, cache, std::make_shared<PhotoImport::Control>(), PhotoImport::Look::header));
        request.items = looked->items;
    });
    QList<QUrl> files;
    for (const PublicationItem& item : request.items)
        files.append(item.url);
    request.destinations = exportPaths(files, out);
    request.format = *format;
    request.jobs = parser.value(jobs).toInt();
    const ExportServices services{
        .photos = cache,
        .stagingPlace = own.filePath(u"staging"_s),
        .charge = {
            .account = &account.session(),
            .journal = &account.journal(),
            .payer = {},
            .payments = [] { return Payments(); },
            .record = [](const QList<RenderedOutput>&, const Strike& strike) { return strike(); }}};
    ExportOutcome outcome;
    const Lap lanes = timed([&] {
        outcome = QCoro::waitFor(runExport(request, services, std::make_shared<ExportControl>()));
    });
    std::printf(
        "%lld of %lld photos: looked at in %.3f s (%.3f s of processor), exported in %.3f s "
        "(%.3f s); peak memory %.0f MB; %s\n",
        qlonglong(outcome.written.size()), qlonglong(photos.size()), look.seconds, look.processor,
        lanes.seconds, lanes.processor, double(peakMemory()) / 1e6, qPrintable(outcome.sentence()));
    return outcome.written.size() == photos.size() ? 0 : 1;
}
