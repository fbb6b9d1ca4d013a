#include "cli/shared/BatchOptions.h"

#include "cli/shared/PhotoArguments.h"
#include "studio/sheet/TextSheetFile.h"
#include "templates/TemplateDefinition.h"

#include <QCommandLineParser>

using namespace Qt::StringLiterals;

QCommandLineOption BatchArguments::formatOption()
{
    return {u"format"_s, u"formato: %1"_s.arg(formatKeys()), u"formato"_s,
            row(SocialFormat::carouselPortrait).templateKey.toString()};
}

void BatchArguments::addTo(QCommandLineParser& parser) const
{
    parser.addOptions({m_format, m_design, m_texts});
    parser.addPositionalArgument(u"foto|carpeta…"_s, u"fotos, o carpetas de fotos"_s);
}

QString BatchArguments::readLooks(const QCommandLineParser& parser, BatchOptions& options,
                                  const Tell& tell) const
{
    const QString key = parser.value(m_format);
    const auto chosen = fromTemplateKey(key);
    if (!chosen)
        return u"no conozco el formato «%1»; los formatos son %2."_s.arg(key, formatKeys());
    options.format = *chosen;
    if (QString problem = readDesign(parser, options, tell); !problem.isEmpty())
        return problem;
    if (!parser.isSet(m_texts))
        return {};
    const TextSheet texts = readTextSheetFile(parser.value(m_texts));
    if (!texts.error.isEmpty()) {
        return u"no se pudieron leer los textos de %1: %2."_s.arg(parser.value(m_texts),
                                                                  texts.error);
    }
    options.texts = texts;
    return {};
}

QString BatchArguments::readDesign(const QCommandLineParser& parser, BatchOptions& options,
                                   const Tell& tell) const
{
    if (!parser.isSet(m_design))
        return {};
    const DefinitionFile file = readDefinitionFile(parser.value(m_design));
    if (!file.definition)
        return u"la plantilla «%1» %2."_s.arg(parser.value(m_design), file.error);
    options.design = file.definition->application();
    if (!parser.isSet(m_format)) {
        options.format = file.definition->socialFormat();
    } else if (!file.definition->matches(options.format)) {
        tell(u"la plantilla «%1» está hecha para el formato %2."_s.arg(
            file.definition->name, rawValue(file.definition->socialFormat())));
    }
    return {};
}

QString BatchArguments::readPhotos(const QCommandLineParser& parser, BatchOptions& options,
                                   const Tell& tell)
{
    const PhotoArguments found = photoArguments(parser.positionalArguments(), tell);
    options.photos.append(found.photos);
    options.unreachable.append(found.unreachable);
    return found.problem;
}
