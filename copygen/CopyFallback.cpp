#include "copygen/CopyFallback.h"

using namespace Qt::StringLiterals;

namespace {

struct HeadlineRow {
    std::array<QStringView, 2> words;
    QStringView headline;
};

constexpr std::array headlines{
    HeadlineRow{{u"food", u"dish"}, u"Sabor que se recuerda"},
    HeadlineRow{{u"person", u"portrait"}, u"Una historia con presencia"},
    HeadlineRow{{u"building", u"room"}, u"Un espacio para vivirlo"},
    HeadlineRow{{u"nature", u"sky"}, u"Respira este momento"},
};

// Words end at white space; all letters but a word's first become lower-case.
QString capitalizedWords(const QString& text)
{
    QString result;
    bool beginsWord = true;
    for (const char32_t c : text.toLower().toUcs4()) {
        result += QChar::fromUcs4(beginsWord ? QChar::toTitleCase(c) : c);
        beginsWord = QChar::isSpace(c);
    }
    return result;
}

}    // namespace

GeneratedCopy composeCopy(const QStringList& labels, const QString& objective, SocialFormat format,
                          const QString& engine)
{
    const bool isStory = format == SocialFormat::storyReel;
    const QString details = labels.mid(1, 2).join(u", "_s).trimmed();
    const QString aim = objective.trimmed();
    const QString goal = (aim.isEmpty() ? u"captar atención"_s : aim).toLower();

    const QString caption =
        u"Hay imágenes que no solo se miran: activan una intención. Esta propuesta visual está "
        "pensada para "_s +
        goal + u", conectando lo que se ve con una llamada clara a la acción. "_s +
        (isStory ? u"Guárdalo, compártelo o desliza para descubrir más."_s
                 : u"Descubre más y da el siguiente paso."_s) +
        u" #Moltiva #DiseñoSocial #MarketingVisual"_s;
    const QString seen = labels.isEmpty() ? u"sin etiquetas claras"_s : labels.join(u", "_s);
    return GeneratedCopy(
        headline(labels.value(0, u"la imagen"_s)), u"Una propuesta visual para "_s + goal + u'.',
        details.isEmpty() ? u"Claro. Directo. Memorable."_s : capitalizedWords(details),
        isStory ? u"Desliza y descubre"_s : u"Quiero saber más"_s, caption,
        engine + u". Etiquetas: "_s + seen + u'.');
}

QString headline(const QString& label)
{
    const QString text = QString(label).replace(u'-', u' ');
    for (const HeadlineRow& row : headlines) {
        for (const QStringView word : row.words) {
            if (text.contains(word, Qt::CaseInsensitive))
                return row.headline.toString();
        }
    }
    return capitalizedWords(text);
}
