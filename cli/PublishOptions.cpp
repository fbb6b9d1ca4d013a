#include "cli/PublishOptions.h"

#include "cli/shared/CommandHelp.h"
#include "cli/shared/Terminal.h"
#include "model/PlainText.h"
#include "studio/publish/PublishCaptions.h"

#include <QCommandLineParser>
#include <QFile>
#include <QStringDecoder>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 longestCaptionFile = 1 << 20;    // bytes

QString namesOfNetworks()
{
    QStringList names;
    for (const auto& network : Vocabulary<SocialPublishNetwork>::rows)
        names.append(network.rawValue.toString());
    return names.join(u", "_s);
}

int refusedPublishing(const QString& sentence)
{
    tellOfPublishing(sentence);
    return exitWrongUse;
}

void printHelpOfPublishing(const QCommandLineParser& parser)
{
    printCommandHelp(parser, u"publish --network RED [opciones] foto|carpeta…"_s,
                     {{exitDone, u"publicado"_s},
                      {exitSomeFailed, u"no se ha publicado, o alguna foto no se pudo leer"_s},
                      {exitWrongUse},
                      {exitNotSignedIn},
                      {exitTooFewCredits},
                      {exitNoNetwork},
                      {exitUnknown, u"no se sabe si se ha publicado"_s},
                      {exitInterrupted}});
}

// Returns why the file cannot be read, as the end of a sentence; empty on success.
QString readCaption(const QString& path, std::optional<QString>& caption)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return file.errorString();
    const QByteArray bytes = file.read(longestCaptionFile + 1);
    if (bytes.size() > longestCaptionFile)
        return u"es demasiado grande"_s;
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder(bytes);
    if (decoder.hasError())
        return u"no está en UTF-8"_s;
    text = plainText(text);
    if (text.endsWith(u'\n'))
        text.chop(1);    // the line end that editors put after the last line
    caption = text;
    return {};
}

}    // namespace

std::optional<SocialPublishNetwork> networkNamed(const QString& name)
{
    return fromRawValue<SocialPublishNetwork>(name.toLower());
}

QString unknownNetwork(const QString& name)
{
    return u"no conozco la red «%1»; las redes son %2."_s.arg(printable(name), namesOfNetworks());
}

void tellOfPublishing(const QString& sentence)
{
    print(stderr, u"moltiva publish: "_s + sentence);
}

std::variant<PublishOptions, int> publishOptions(const QStringList& arguments)
{
    const QCommandLineOption help{{u"h"_s, u"help"_s}, u"muestra esta ayuda"_s};
    const QCommandLineOption network{u"network"_s, u"red: %1"_s.arg(namesOfNetworks()), u"red"_s};
    const QCommandLineOption placement{u"placement"_s, u"destino de Instagram: feed o story"_s,
                                       u"destino"_s, u"feed"_s};
    const QCommandLineOption caption{
        u"caption"_s, u"texto de la publicación; sin él, el que los textos dan a la primera foto"_s,
        u"texto"_s};
    const QCommandLineOption captionFile{u"caption-file"_s, u"archivo con ese texto"_s,
                                         u"archivo"_s};
    const QCommandLineOption dryRun{
        u"dry-run"_s, u"solo dice lo que costaría y los avisos; no envía ni descuenta nada"_s};
    const QCommandLineOption again{u"again"_s,
                                   u"publica aunque ya se publicara o un aviso pida confirmarlo"_s};
    const QCommandLineOption isJson{u"json"_s, u"un objeto JSON"_s};
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Publica las fotos con sus textos en una red conectada. Cada imagen cuesta lo mismo que "
        "al exportarla, una sola vez."_s);
    parser.addOptions({help, network, placement, caption, captionFile, dryRun, again, isJson});
    const BatchArguments batch;
    batch.addTo(parser);

    if (!parser.parse(QStringList{u"moltiva publish"_s} + arguments))
        return refusedPublishing(parser.errorText());
    if (parser.isSet(help)) {
        printHelpOfPublishing(parser);
        return exitDone;
    }
    PublishOptions options;
    if (!parser.isSet(network))
        return refusedPublishing(u"falta --network."_s);
    const auto chosen = networkNamed(parser.value(network));
    if (!chosen)
        return refusedPublishing(unknownNetwork(parser.value(network)));
    options.network = *chosen;
    const auto place = fromRawValue<SocialPublishPlacement>(parser.value(placement));
    if (!place) {
        return refusedPublishing(
            u"no conozco el destino «%1»; los destinos son feed y story."_s.arg(
                printable(parser.value(placement))));
    }
    if (*place == SocialPublishPlacement::story && !row(*chosen).hasStories)
        return refusedPublishing(u"%1 no tiene stories."_s.arg(row(*chosen).title));
    options.placement = *place;
    if (parser.isSet(caption) && parser.isSet(captionFile))
        return refusedPublishing(u"--caption y --caption-file no van juntos."_s);
    if (parser.isSet(caption))
        options.caption = plainText(parser.value(caption));
    if (parser.isSet(captionFile)) {
        const QString problem = readCaption(parser.value(captionFile), options.caption);
        if (!problem.isEmpty()) {
            return refusedPublishing(
                u"no se pudo leer el texto de %1: %2."_s.arg(parser.value(captionFile), problem));
        }
    }
    if (options.caption && options.caption->size() > longestPostCaption) {
        return refusedPublishing(
            u"el texto de la publicación tiene %1 caracteres y el límite es de %2."_s.arg(
                QString::number(options.caption->size()), QString::number(longestPostCaption)));
    }
    options.isDryRun = parser.isSet(dryRun);
    options.isJson = parser.isSet(isJson);
    options.isConfirmed = parser.isSet(again);
    QString problem = batch.readLooks(parser, options, tellOfPublishing);
    if (problem.isEmpty())
        problem = BatchArguments::readPhotos(parser, options, tellOfPublishing);
    if (!problem.isEmpty())
        return refusedPublishing(problem);
    if (parser.positionalArguments().isEmpty())
        return refusedPublishing(u"falta decir qué fotos. Prueba «moltiva publish --help»."_s);
    if (options.photos.isEmpty() && options.unreachable.isEmpty())
        tellOfPublishing(u"No he encontrado imágenes compatibles."_s);
    return options;
}
