// Measures the template library with 2,000 designs: what the gallery asks of it on the interface
// thread, and the memory and time that packs of strangers take.
//
//     template_library

#include "benchmarks/Measuring.h"
#include "platform/Memory.h"
#include "platform/PreferencesStore.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "studio/templates/TemplateLibrary.h"
#include "templates/MissingFonts.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <zip.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int packs = 4, designsOfAPack = 497, rounds = 50;    // and the gallery: 2,000

// A definition like those of the gallery.
QByteArray definition(int number)
{
    QByteArray texts, shapes;
    for (const char* slot : {"Título", "Subtítulo", "Tagline", "CTA"}) {
        texts += QByteArray(texts.isEmpty() ? "" : ",") + R"({"slot":")" + slot +
                 R"(","frame":{"x":0.1,"y":0.2,"width":0.8,"height":0.2},"fontName":"Vollkorn )" +
                 R"(Bold","foreground":"#102030","fontScale":1.2})";
    }
    for (int i = 0; i < 5; ++i) {
        shapes += QByteArray(i ? "," : "") +
                  R"({"kind":"Rectángulo","frame":{"x":0,"y":0,"width":1,"height":0.2},)" +
                  R"("fill":"#DFE6D6","fillOpacity":1})";
    }
    return R"({"name":"Diseño número )" + QByteArray::number(number) +
           R"(","format":"square","textLayers":[)" + texts + R"(],"shapeLayers":[)" + shapes + "]}";
}

bool write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

void zip(const QString& path, const QList<QByteArray>& files)
{
    zip_t* archive = zip_open(path.toUtf8().constData(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    for (qsizetype i = 0; i < files.size(); ++i) {
        zip_file_add(
            archive, (QByteArray::number(i) + ".json").constData(),
            zip_source_buffer(archive, files[i].constData(), zip_uint64_t(files[i].size()), 0), 0);
    }
    zip_close(archive);
}

// The largest resident size since the last resetPeak(), in megabytes.
double peak()
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = status.readAll();
    return text.mid(text.indexOf("VmHWM:") + 6).trimmed().split(' ').first().toDouble() / 1024;
}

void resetPeak()
{
    releaseFreedMemory();
    write(u"/proc/self/clear_refs"_s, "5");
}

void read(const char* what, const QString& path)
{
    resetPeak();
    PackFile file;
    const double time = timeOf([&] { file = readPack(path); });
    std::printf("%-44s %7.0f ms, peak %4.0f MB: %s\n", what, time, peak(),
                file.pack ? qPrintable(u"%1 designs"_s.arg(file.pack->designs.size()))
                          : qPrintable(file.error));
    if (file.pack) {
        const double fonts = timeOf([&] {
            for (const PackDesign& design : std::as_const(file.pack->designs))
                missingFont(design.definition);
        });
        std::printf("%-44s %7.0f ms\n", "  its fonts", fonts);
    }
}

// Packs that ask for as much memory or time as they can.
void readHostilePacks(const QDir& folder)
{
    const QString path = folder.filePath(u"hostil.zip"_s);
    const qsizetype most = 15 << 20;
    const QByteArray text =
        R"({"slot":"a","frame":{"x":0,"y":0,"width":1,"height":1},"fontName":")" +
        QByteArray("ab ").repeated(66) + "\"}";
    const QByteArray shape = R"({"kind":"Línea","frame":{"x":0,"y":0,"width":1,"height":1}},)";
    QByteArray layers = R"({"textLayers":[)" + (text + ',').repeated(499) + text + "]}";
    QList<QByteArray> files(4, R"({"textLayers":[{"slot":")" + QByteArray(most, 'a') + "\"}]}");
    zip(path, files);
    read("long words", path);
    files.fill(R"({"textLayers":[],"previewPNGBase64":")" + QByteArray(most / 4 * 4, 'A') + "\"}");
    zip(path, files);
    read("large previews", path);
    files.fill(R"({"textLayers":[)" + shape.repeated(most / shape.size()) + "0]}");
    zip(path, files);
    read("many layers in a file", path);
    files = QList<QByteArray>(80, layers);
    zip(path, files);
    read("many layers in all", path);
    files = QList<QByteArray>(2000, QByteArray(10 << 20, ' '));
    zip(path, files);
    read("a bomb of 20 GB", path);
    files = QList<QByteArray>(4, R"({"a":)" + QByteArray(most, '['));
    zip(path, files);
    read("deep lists", path);
    files = QList<QByteArray>(4, "{\"textLayers\":[" + QByteArray("0,").repeated(most / 2) + "0]}");
    zip(path, files);
    read("many values", path);
    files.clear();
    for (int i = 0; i < TemplatePack::mostFiles; ++i) {
        QByteArray fonts;
        for (int k = 0; k < 4; ++k) {
            fonts += QByteArray(k ? "," : "") +
                     R"({"slot":"Título","frame":{"x":0,"y":0,"width":1,"height":1},"fontName":")" +
                     QByteArray("a ").repeated(95) + QByteArray::number(4 * i + k) + "\"}";
        }
        files.append(R"({"textLayers":[)" + fonts + "]}");
    }
    zip(path, files);
    read("8,000 fonts", path);
}

}    // namespace

int main(int argc, char** argv)
{
    fixAllocatorThresholds();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    TimedApplication application(argc, argv);
    const auto finish = qScopeGuard(&finishWorkers);
    const QTemporaryDir own;
    const QDir folder(own.path());
    PreferencesStore preferences(folder.filePath(u"a.sqlite"_s));
    SavedTemplates saved(preferences, std::make_shared<PhotoCache>(folder.filePath(u"thumbs"_s)));
    TemplateLibrary library(saved, nullptr, preferences, folder.filePath(u"data"_s));
    library.load();
    turnUntil([&] { return library.isLoaded(); });
    QStringList told;
    QObject::connect(&library, &TemplateLibrary::told, &library,
                     [&](const QString& sentence) { told.append(sentence); });
    application.milliseconds.clear();
    for (int i = 0; i < packs; ++i) {
        const QString pack = folder.filePath(u"Paquete %1"_s.arg(i));
        QDir().mkpath(pack);
        for (int k = 0; k < designsOfAPack; ++k)
            write(pack + u"/%1.json"_s.arg(k), definition(i * designsOfAPack + k));
        library.installPack(pack);
        turnUntil([&] { return told.size() == i + 1; });
    }
    report("installing packs, events", application.milliseconds);
    application.milliseconds.clear();
    {
        TemplateLibrary again(saved, nullptr, preferences, folder.filePath(u"data"_s));
        QElapsedTimer watch;
        watch.start();
        again.load();
        turnUntil([&] { return again.isLoaded(); });
        std::printf("reading all packs takes %lld ms\n", qlonglong(watch.elapsed()));
        report("reading all packs, events", application.milliseconds);
    }
    constexpr SocialFormat format = SocialFormat::square;
    std::printf("%lld designs\n", qlonglong(library.found({}, {}, false, format).size()));
    report("sections", timed(rounds, 1, [&] { library.sections(format); }));
    report("found, all words in all",
           timed(rounds, 1, [&] { library.found(u"diseño numero"_s, {}, false, format); }));
    report("found, one", timed(rounds, 1, [&] { library.found(u"1234"_s, {}, false, format); }));
    report("found, by tag",
           timed(rounds, 1, [&] { library.found({}, u"oferta"_s, false, format); }));
    report("tags", timed(rounds, 1, [&] { library.tags(format); }));
    const PublicationItem item = PublicationItem::make({}, {});
    report("one more template of the user", timed(20, 1, [&] {
               saved.addTemplate(VisualTemplate::of(item, QUuid::createUuid().toString(), format));
           }));
    readHostilePacks(folder);
    return 0;
}
