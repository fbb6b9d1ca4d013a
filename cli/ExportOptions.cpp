#include "cli/ExportOptions.h"

#include "cli/SampleBatch.h"
#include "cli/shared/CommandHelp.h"
#include "cli/shared/OutputFolder.h"
#include "cli/shared/Terminal.h"
#include "studio/PhotoFolder.h"
#include "studio/export/RenderedOutput.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

constexpr int mostJobs = 256;

int wrongUse(const QString& sentence)
{
    tellOfExport(sentence);
    return exitWrongUse;
}

// Parses the arguments in steps, the functions called read…(). A step that fails returns an exit
// status.
class ExportArguments {
public:
    ExportArguments()
    {
        m_parser.setApplicationDescription(
            u"Exporta cada foto con sus textos de partida como «<nombre>-publicacion.png». Cada "
            "imagen cuesta %1 créditos de la cuenta, una sola vez."_s.arg(exportCreditCost));
        m_parser.addOptions({m_help, m_out, m_jobs, m_dryRun, m_json, m_sample});
        m_batch.addTo(m_parser);
    }

    std::variant<ExportOptions, int> read(const QStringList& arguments)
    {
        if (!m_parser.parse(QStringList{u"moltiva export"_s} + arguments))
            return wrongUse(m_parser.errorText());
        if (m_parser.isSet(m_help)) {
            printHelp();
            return exitDone;
        }
        for (const auto step : {&ExportArguments::readLooks, &ExportArguments::readJobs,
                                &ExportArguments::readPhotos, &ExportArguments::readFolder}) {
            if (const auto status = (this->*step)())
                return *status;
        }
        m_options.isJson = m_parser.isSet(m_json);
        return m_options;
    }

private:
    using Failure = std::optional<int>;    // the exit status after a failure; empty: success

    void printHelp() const
    {
        printCommandHelp(m_parser, u"export [opciones] foto|carpeta…"_s,
                         {{exitDone, u"todo exportado"_s},
                          {exitSomeFailed, u"algo no se pudo leer o guardar"_s},
                          {exitWrongUse},
                          {exitNotSignedIn},
                          {exitTooFewCredits},
                          {exitNoNetwork},
                          {exitInterrupted}});
    }

    Failure readLooks()
    {
        const QString problem = m_batch.readLooks(m_parser, m_options, tellOfExport);
        return problem.isEmpty() ? Failure() : wrongUse(problem);
    }

    Failure readJobs()
    {
        if (!m_parser.isSet(m_jobs))
            return {};
        bool isNumber = false;
        m_options.jobs = m_parser.value(m_jobs).toInt(&isNumber);
        if (!isNumber || m_options.jobs < 1 || m_options.jobs > mostJobs)
            return wrongUse(u"--jobs pide un número de 1 a %1."_s.arg(mostJobs));
        return {};
    }

    Failure readPhotos()
    {
        if (m_parser.isSet(m_sample)) {
            m_options.sample = std::make_shared<QTemporaryDir>();
            if (!paintSampleBatch(m_options.sample->path()))
                return wrongUse(u"no se pudo preparar el lote de muestra."_s);
            m_options.photos.append(photosInFolder(m_options.sample->path()));
        }
        const QString problem = BatchArguments::readPhotos(m_parser, m_options, tellOfExport);
        if (!problem.isEmpty())
            return wrongUse(problem);
        if (!m_parser.isSet(m_sample) && m_parser.positionalArguments().isEmpty())
            return wrongUse(u"falta decir qué fotos. Prueba «moltiva export --help»."_s);
        if (m_options.photos.isEmpty() && m_options.unreachable.isEmpty())
            tellOfExport(u"No he encontrado imágenes compatibles."_s);
        return {};
    }

    Failure readFolder()
    {
        m_options.folder = m_parser.value(m_out);
        m_options.isDryRun = m_parser.isSet(m_dryRun);
        if (!m_options.isDryRun && !OutputFolder::canBeMade(m_options.folder))
            return wrongUse(u"no se puede escribir en la carpeta «%1»."_s.arg(m_options.folder));
        return {};
    }

    const QCommandLineOption m_help{{u"h"_s, u"help"_s}, u"muestra esta ayuda"_s};
    const QCommandLineOption m_out{u"out"_s, u"carpeta de destino; se crea si no existe"_s,
                                   u"carpeta"_s, u"."_s};
    const QCommandLineOption m_jobs{
        u"jobs"_s, u"fotos a la vez, como mucho una por núcleo, que es lo habitual"_s, u"n"_s};
    const QCommandLineOption m_dryRun{u"dry-run"_s,
                                      u"solo dice lo que costarían las fotos cuya cabecera se "
                                      u"puede leer; no exporta ni descuenta "
                                      "nada"_s};
    const QCommandLineOption m_json{u"json"_s, u"un objeto JSON por archivo y un resumen"_s};
    const QCommandLineOption m_sample{u"sample"_s, u"exporta un lote de muestra en vez de fotos"_s};
    const BatchArguments m_batch;
    QCommandLineParser m_parser;
    ExportOptions m_options;
};

}    // namespace

void tellOfExport(const QString& sentence)
{
    print(stderr, u"moltiva export: "_s + sentence);
}

std::variant<ExportOptions, int> exportOptions(const QStringList& arguments)
{
    return ExportArguments().read(arguments);
}
