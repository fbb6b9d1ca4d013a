#include "model/GeneratedCopy.h"

#include "model/Characters.h"
#include "model/SearchText.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

struct CannedCall {
    QStringView fragment, text;
};

constexpr QStringView fallbackCall = u"Descubre más";
constexpr std::array cannedCalls{
    CannedCall{u"reserva", u"Reserva ahora"}, CannedCall{u"cita", u"Pide tu cita"},
    CannedCall{u"compra", u"Comprar ahora"},  CannedCall{u"coleccion", u"Ver colección"},
    CannedCall{u"contact", u"Contactar"},     CannedCall{u"inscrib", u"Inscríbete"},
    CannedCall{u"descubre", fallbackCall},    CannedCall{u"ver", u"Ver más"},
};

}    // namespace

GeneratedCopy::GeneratedCopy(const QString& titleText, const QString& subtitleText,
                             const QString& taglineText, const QString& callToActionText,
                             const QString& caption, const QString& notes)
    : title(titleText), subtitle(subtitleText), tagline(taglineText),
      callToAction(normalizedCallToAction(callToActionText)), publicationCaption(caption),
      imageNotes(notes)
{
}

const GeneratedCopy& GeneratedCopy::placeholder()
{
    static const GeneratedCopy copy(
        u"Tu próximo momento"_s, u"Una imagen lista para contar una historia."_s,
        u"Diseñado para destacar"_s, u"Ver más"_s,
        u"Una imagen lista para contar una historia. Descubre más y da el siguiente paso."_s,
        u"Importa imágenes para analizarlas en local."_s);
    return copy;
}

const QString& GeneratedCopy::text(CopySlot slot) const
{
    switch (slot) {
    case CopySlot::title:
        return title;
    case CopySlot::subtitle:
        return subtitle;
    case CopySlot::tagline:
        return tagline;
    case CopySlot::callToAction:
        return callToAction;
    }
    Q_UNREACHABLE();
}

QString GeneratedCopy::normalizedCallToAction(const QString& text)
{
    static constexpr QStringView punctuation = u".,;:!¡¿?";
    QString cleaned = text;
    cleaned.replace(u'\n', u' ').replace(u'\r', u' ').remove(u'"');
    QStringView call = QStringView(cleaned).trimmed();
    while (!call.isEmpty() && punctuation.contains(call.front()))
        call = call.mid(1);
    while (!call.isEmpty() && punctuation.contains(call.back()))
        call.chop(1);
    cleaned = call.toString();

    if (call.trimmed().isEmpty())
        return fallbackCall.toString();
    const auto words = cleaned.simplified().split(u' ', Qt::SkipEmptyParts).size();
    if (words <= 4 && !cleaned.contains(u'.') && characterCount(cleaned) <= 24)
        return cleaned;

    const QString folded = foldedForSearch(cleaned);
    for (const CannedCall& canned : cannedCalls) {
        if (folded.contains(canned.fragment))
            return canned.text.toString();
    }
    return fallbackCall.toString();
}
