// Exports a folder with exportPlainly() and prints the time of each stage. export_lanes measures
// the program's own export of the folder.
//
//     batch_export PHOTOS OUT [--jobs N] [--format KEY]

#include "benchmarks/PlainExport.h"
#include "platform/Memory.h"
#include "studio/PhotoFolder.h"
#include "studio/export/ExportPaths.h"

#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>

#include <cstdio>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

int main(int argc, char** argv)
{
    fixAllocatorThresholds();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    QCommandLineParser parser;
    const QCommandLineOption jobs(u"jobs"_s, u"threads"_s, u"n"_s,
                                  QString::number(std::thread::hardware_concurrency()));
    const QCommandLineOption formatKey(u"format"_s, u"template key"_s, u"key"_s,
                                       u"carousel-portrait"_s);
    parser.addOptions({jobs, formatKey});
    parser.process(application);
    const auto format = fromTemplateKey(parser.value(formatKey));
    if (parser.positionalArguments().size() != 2 || !format || parser.value(jobs).toInt() < 1) {
        std::fprintf(stderr, "batch_export PHOTOS OUT [--jobs N] [--format KEY]\n");
        return 2;
    }
    const QString out = parser.positionalArguments().at(1);
    QDir().mkpath(out);
    const QList<QUrl> photos = photosInFolder(parser.positionalArguments().at(0));
    const QStringList paths = exportPaths(photos, out);

    std::vector<PlainFile> files(std::size_t(photos.size()));
    QElapsedTimer watch;
    watch.start();
    runOnThreads(photos.size(), parser.value(jobs).toInt(), [&](qsizetype i) {
        files[std::size_t(i)] = exportPlainly(photos[i], *format, paths[i]);
    });
    ExportTimes sum;
    qint64 bytes = 0, written = 0;
    for (const PlainFile& file : files) {
        sum.decode += file.times.decode;
        sum.draw += file.times.draw;
        sum.encode += file.times.encode;
        sum.write += file.times.write;
        bytes += file.bytes;
        written += file.bytes > 0;
    }
    const double count = double(std::max<qint64>(written, 1));
    std::printf("%lld of %lld photos in %.3f s; per photo: decode %.1f ms, draw %.1f, encode %.1f, "
                "write %.1f, %.0f kB; peak memory %.0f MB\n",
                qlonglong(written), qlonglong(photos.size()), double(watch.elapsed()) / 1000,
                sum.decode / count * 1e3, sum.draw / count * 1e3, sum.encode / count * 1e3,
                sum.write / count * 1e3, double(bytes) / count / 1e3, double(peakMemory()) / 1e6);
    return written == photos.size() ? 0 : 1;
}
