#include "cli/ExportCommand.h"

#include "cli/CommandLine.h"
#include "cli/ExportReport.h"
#include "cli/Interrupt.h"
#include "cli/SampleBatch.h"
#include "model/SocialFormat.h"
#include "platform/Memory.h"
#include "studio/BatchExport.h"
#include "studio/PhotoFolder.h"
#include "studio/TextSheetFile.h"
#include "templates/TemplateDefinition.h"

#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdio>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

struct ExportRequest {
    SocialFormat format = SocialFormat::carouselPortrait;
    QString folder = u"."_s;
    int jobs = 1;
    bool json = false;
    bool sample = false;
    TextSheet texts;
    TemplateApplication design;    // none: as it is
};

constexpr int mostJobs = 256;

QString formatKeys()
{
    QStringList keys;
    for (const auto& format : Vocabulary<SocialFormat>::rows)
        keys.append(format.templateKey.toString());
    return keys.join(u", "_s);
}

void tell(const QString& sentence)
{
    std::fprintf(stderr, "moltiva export: %s\n", sentence.toUtf8().constData());
}

int wrongUse(const QString& sentence)
{
    tell(sentence);
    return exitWrongUse;
}

// Of a folder, without what an earlier export of it left there.
QList<QUrl> photosAt(const QString& path)
{
    if (!QFileInfo(path).isDir())
        return {QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath())};
    const QList<QUrl> found = photosInFolder(path);
    QList<QUrl> kept = withoutOwnOutputs(found);
    if (kept.size() < found.size()) {
        tell(u"%1: %2 publicación(es) de otra foto de la carpeta, no se exportan."_s.arg(
            path, QString::number(found.size() - kept.size())));
    }
    return kept;
}

int exportPhotos(const ExportRequest& request, const QList<QUrl>& photos)
{
    const QStringList paths = exportPaths(photos, request.folder);

    ExportReport report(request.json, photos.size());
    for (qsizetype i = 0; i < photos.size(); ++i) {
        if (!paths[i].endsWith(filenameOf(photos[i]) + u"-publicacion.png"_s))
            report.renamed(photos[i].toLocalFile(), paths[i]);
    }
    PublicationItems items;
    for (const QUrl& photo : photos)
        items.append(PublicationItem::make(photo, {}));
    const SheetMatch texts = matchRows(request.texts, items);
    for (const RowProblem& problem : texts.problems)
        report.rowFailed(problem);
    const auto preparations = [&](qsizetype i) {
        QList<ItemPreparation> all{[&, i](PublicationItem& item) {
            if (const auto row = texts.rowOfImage[i])
                fillTexts(item, request.texts.rows[*row]);
        }};
        if (request.design)
            all.append(request.design);
        return all;
    };
    const Interrupt interrupt;
    QElapsedTimer watch;
    watch.start();
    runBatch(
        photos.size(), request.jobs, interrupt.flag(),
        [&](qsizetype i) {
            return exportPhoto(photos[i], request.format, paths[i], preparations(i));
        },
        [&](qsizetype i, const ExportedFile& file) {
            report.finished(photos[i].toLocalFile(), file);
        });
    const bool stopped = interrupt.flag();
    report.end(double(watch.elapsed()) / 1000, peakMemory(), stopped);
    if (stopped)
        return exitInterrupted;
    const bool isAllDone = report.written() == photos.size() && texts.problems.isEmpty();
    return isAllDone && !photos.isEmpty() ? exitDone : exitSomeFailed;
}

}    // namespace

int runExport(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Exporta cada foto con sus textos de partida como «<nombre>-publicacion.png»."_s);
    const QCommandLineOption help({u"h"_s, u"help"_s}, u"muestra esta ayuda"_s);
    const QCommandLineOption format(u"format"_s, u"formato: %1"_s.arg(formatKeys()), u"formato"_s,
                                    row(SocialFormat::carouselPortrait).templateKey.toString());
    const QCommandLineOption out(u"out"_s, u"carpeta de destino; se crea si no existe"_s,
                                 u"carpeta"_s, u"."_s);
    const QCommandLineOption jobs(u"jobs"_s, u"fotos a la vez; si no se dice, una por núcleo"_s,
                                  u"n"_s);
    const QCommandLineOption json(u"json"_s, u"un objeto JSON por archivo y un resumen"_s);
    const QCommandLineOption sample(u"sample"_s, u"exporta un lote de muestra en vez de fotos"_s);
    const QCommandLineOption texts(u"texts"_s, u"textos de cada foto, de un archivo CSV"_s,
                                   u"archivo.csv"_s);
    const QCommandLineOption design(
        u"template"_s, u"plantilla de todas las fotos; sin --format, también su formato"_s,
        u"archivo.json"_s);
    parser.addOptions({help, format, out, design, texts, jobs, json, sample});
    parser.addPositionalArgument(u"foto|carpeta…"_s, u"fotos, o carpetas de fotos"_s);

    if (!parser.parse(QStringList{u"moltiva export"_s} + arguments))
        return wrongUse(parser.errorText());
    if (parser.isSet(help)) {
        // The parser names the program alone.
        QString text = parser.helpText();
        text.replace(0, text.indexOf(u'\n'), u"Uso: moltiva export [opciones] foto|carpeta…"_s);
        std::fputs(text.toUtf8().constData(), stdout);
        return exitDone;
    }

    ExportRequest request;
    const auto chosen = fromTemplateKey(parser.value(format));
    if (!chosen) {
        return wrongUse(u"no conozco el formato «%1»; los formatos son %2."_s.arg(
            parser.value(format), formatKeys()));
    }
    request.format = *chosen;
    request.folder = parser.value(out);
    request.jobs = int(std::max(1u, std::thread::hardware_concurrency()));
    if (parser.isSet(jobs)) {
        bool isNumber = false;
        request.jobs = parser.value(jobs).toInt(&isNumber);
        if (!isNumber || request.jobs < 1 || request.jobs > mostJobs)
            return wrongUse(u"--jobs pide un número de 1 a %1."_s.arg(mostJobs));
    }
    request.json = parser.isSet(json);
    if (parser.isSet(design)) {
        const DefinitionFile read = readDefinitionFile(parser.value(design));
        if (!read.definition) {
            return wrongUse(u"la plantilla «%1» %2."_s.arg(parser.value(design), read.error));
        }
        request.design = read.definition->application();
        if (!parser.isSet(format))
            request.format = read.definition->socialFormat();
        else if (!read.definition->matches(request.format))
            tell(u"la plantilla «%1» está hecha para el formato %2."_s.arg(
                read.definition->name, rawValue(read.definition->socialFormat())));
    }
    if (parser.isSet(texts)) {
        request.texts = readTextSheetFile(parser.value(texts));
        if (!request.texts.error.isEmpty()) {
            return wrongUse(u"no se pudieron leer los textos de %1: %2."_s.arg(
                parser.value(texts), request.texts.error));
        }
    }

    std::optional<QTemporaryDir> sampleFolder;
    QList<QUrl> photos;
    if (parser.isSet(sample)) {
        sampleFolder.emplace();
        if (!paintSampleBatch(sampleFolder->path()))
            return wrongUse(u"no se pudo preparar el lote de muestra."_s);
        photos.append(photosInFolder(sampleFolder->path()));
    }
    for (const QString& path : parser.positionalArguments()) {
        if (!QFileInfo::exists(path))
            return wrongUse(u"no existe «%1»."_s.arg(path));
        photos.append(photosAt(path));
    }
    if (!parser.isSet(sample) && parser.positionalArguments().isEmpty())
        return wrongUse(u"falta decir qué fotos. Prueba «moltiva export --help»."_s);
    if (photos.isEmpty())
        tell(u"No he encontrado imágenes compatibles."_s);
    if (!QDir().mkpath(request.folder))
        return wrongUse(u"no se puede crear la carpeta «%1»."_s.arg(request.folder));
    return exportPhotos(request, photos);
}
