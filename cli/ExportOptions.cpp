#include "cli/ExportOptions.h"

#include "cli/ExitStatus.h"
#include "cli/OutputFolder.h"
#include "cli/PhotoArguments.h"
#include "cli/SampleBatch.h"
#include "cli/Terminal.h"
#include "model/PlainText.h"
#include "studio/PhotoFolder.h"
#include "studio/export/RenderedOutput.h"
#include "studio/sheet/TextSheetFile.h"
#include "templates/TemplateDefinition.h"

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
        m_parser.addOptions(
            {m_help, m_format, m_out, m_design, m_texts, m_jobs, m_dryRun, m_json, m_sample});
        m_parser.addPositionalArgument(u"foto|carpeta…"_s, u"fotos, o carpetas de fotos"_s);
    }

    std::variant<ExportOptions, int> read(const QStringList& arguments)
    {
        if (!m_parser.parse(QStringList{u"moltiva export"_s} + arguments))
            return wrongUse(m_parser.errorText());
        if (m_parser.isSet(m_help)) {
            print(stdout, helpText().trimmed());
            return exitDone;
        }
        for (const auto step : {&ExportArguments::readFormat, &ExportArguments::readJobs,
                                &ExportArguments::readDesign, &ExportArguments::readTexts,
                                &ExportArguments::readPhotos, &ExportArguments::readFolder}) {
            if (const auto status = (this->*step)())
                return *status;
        }
        m_options.isJson = m_parser.isSet(m_json);
        return m_options;
    }

private:
    using Failure = std::optional<int>;    // the exit status after a failure; empty: success

    QString helpText() const
    {
        // Replaces the first line, in which QCommandLineParser leaves out the command.
        QString text = m_parser.helpText();
        text.replace(0, text.indexOf(u'\n'), u"Uso: moltiva export [opciones] foto|carpeta…"_s);
        return text + u"\nEstado de salida:\n"
                      "  0    todo exportado\n"
                      "  1    algo no se pudo leer o guardar\n"
                      "  2    mal uso\n"
                      "  3    nadie ha iniciado sesión\n"
                      "  4    no hay créditos suficientes\n"
                      "  5    no hay conexión con el servicio de cuentas\n"
                      "  130  interrumpido\n"_s;
    }

    Failure readFormat()
    {
        const QString key = m_parser.value(m_format);
        const auto chosen = fromTemplateKey(key);
        if (!chosen) {
            return wrongUse(
                u"no conozco el formato «%1»; los formatos son %2."_s.arg(key, formatKeys()));
        }
        m_options.format = *chosen;
        return {};
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

    Failure readDesign()
    {
        if (!m_parser.isSet(m_design))
            return {};
        const DefinitionFile file = readDefinitionFile(m_parser.value(m_design));
        if (!file.definition)
            return wrongUse(u"la plantilla «%1» %2."_s.arg(m_parser.value(m_design), file.error));
        m_options.design = file.definition->application();
        if (!m_parser.isSet(m_format))
            m_options.format = file.definition->socialFormat();
        else if (!file.definition->matches(m_options.format))
            tellOfExport(u"la plantilla «%1» está hecha para el formato %2."_s.arg(
                file.definition->name, rawValue(file.definition->socialFormat())));
        return {};
    }

    Failure readTexts()
    {
        if (!m_parser.isSet(m_texts))
            return {};
        const TextSheet texts = readTextSheetFile(m_parser.value(m_texts));
        if (!texts.error.isEmpty()) {
            return wrongUse(u"no se pudieron leer los textos de %1: %2."_s.arg(
                m_parser.value(m_texts), texts.error));
        }
        m_options.texts = texts;
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
        const PhotoArguments found = photoArguments(m_parser.positionalArguments(), tellOfExport);
        if (!found.problem.isEmpty())
            return wrongUse(found.problem);
        m_options.photos.append(found.photos);
        m_options.unreachable.append(found.unreachable);
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
    const QCommandLineOption m_format{u"format"_s, u"formato: %1"_s.arg(formatKeys()), u"formato"_s,
                                      row(SocialFormat::carouselPortrait).templateKey.toString()};
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
    const QCommandLineOption m_texts{u"texts"_s, u"textos de cada foto, de un archivo CSV"_s,
                                     u"archivo.csv"_s};
    const QCommandLineOption m_design{
        u"template"_s, u"plantilla de todas las fotos; sin --format, también su formato"_s,
        u"archivo.json"_s};
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
