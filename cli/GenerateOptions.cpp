#include "cli/GenerateOptions.h"

#include "cli/shared/CommandHelp.h"
#include "cli/shared/PhotoArguments.h"
#include "cli/shared/Terminal.h"

#include <QCommandLineParser>

using namespace Qt::StringLiterals;

namespace {

int refused(const QString& sentence)
{
    tellOfGeneration(sentence);
    return exitWrongUse;
}

void printHelpOfGeneration(const QCommandLineParser& parser)
{
    printCommandHelp(
        parser, u"generate [opciones] foto|carpeta…"_s,
        {{exitDone, u"todos los textos están"_s},
         {exitSomeFailed, u"alguna foto se quedó sin textos"_s},
         {exitWrongUse},
         {exitNotSignedIn, u"nadie ha iniciado sesión (solo en la nube)"_s},
         {exitTooFewCredits, u"no hay créditos suficientes (solo en la nube)"_s},
         {exitNoNetwork, u"no hay conexión con el servicio de cuentas (solo en la nube)"_s},
         {exitInterrupted}});
}

}    // namespace

void tellOfGeneration(const QString& sentence)
{
    print(stderr, u"moltiva generate: "_s + sentence);
}

std::variant<GenerateOptions, int> generateOptions(const QStringList& arguments)
{
    const QCommandLineOption help{{u"h"_s, u"help"_s}, u"muestra esta ayuda"_s};
    const QCommandLineOption mode{u"mode"_s,
                                  u"quién los escribe: «local» (gratis) o «cloud» (con créditos)"_s,
                                  u"modo"_s, u"local"_s};
    const QCommandLineOption objective{u"objective"_s, u"objetivo de la campaña"_s, u"texto"_s};
    const QCommandLineOption format{u"format"_s, u"formato: %1"_s.arg(formatKeys()), u"formato"_s,
                                    row(SocialFormat::carouselPortrait).templateKey.toString()};
    const QCommandLineOption csv{
        u"csv"_s,
        u"archivo para «moltiva export --texts»; uno ya empezado se continúa. Sin esta opción, los "
        "textos van a la salida estándar"_s,
        u"archivo.csv"_s};
    const QCommandLineOption isJson{u"json"_s, u"un objeto JSON por foto y un resumen"_s};
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Escribe los textos de cada foto con una IA, como CSV: una fila en cuanto está. Si se "
        "interrumpe, la misma orden sigue donde se quedó, sin volver a pagar."_s);
    parser.addOptions({help, mode, objective, format, csv, isJson});
    parser.addPositionalArgument(u"foto|carpeta…"_s, u"fotos, o carpetas de fotos"_s);

    if (!parser.parse(QStringList{u"moltiva generate"_s} + arguments))
        return refused(parser.errorText());
    if (parser.isSet(help)) {
        printHelpOfGeneration(parser);
        return exitDone;
    }
    GenerateOptions options;
    const QString word = parser.value(mode);
    if (word != u"local" && word != u"cloud")
        return refused(u"no conozco el modo «%1»; los modos son local y cloud."_s.arg(word));
    options.mode = word == u"cloud" ? CopyGenerationMode::cloud : CopyGenerationMode::local;
    const auto chosen = fromTemplateKey(parser.value(format));
    if (!chosen) {
        return refused(u"no conozco el formato «%1»; los formatos son %2."_s.arg(
            parser.value(format), formatKeys()));
    }
    options.format = *chosen;
    options.objective = parser.value(objective);
    options.csv = parser.value(csv);
    options.isJson = parser.isSet(isJson);
    if (parser.positionalArguments().isEmpty())
        return refused(u"falta decir qué fotos. Prueba «moltiva generate --help»."_s);
    const PhotoArguments found = photoArguments(parser.positionalArguments(), tellOfGeneration);
    if (!found.problem.isEmpty())
        return refused(found.problem);
    options.photos = found.photos;
    options.unreachable = found.unreachable;
    if (options.photos.isEmpty() && options.unreachable.isEmpty())
        tellOfGeneration(u"No he encontrado imágenes compatibles."_s);
    return options;
}
