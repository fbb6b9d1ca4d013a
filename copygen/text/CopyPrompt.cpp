#include "copygen/text/CopyPrompt.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

constexpr QStringView opening =
    u"Eres un director creativo senior, copywriter publicitario y experto en publicaciones de "
    "Instagram, TikTok, reels, stories, carruseles y marketing de conversión.\n"
    "Analiza la imagen como contexto visual: qué aparece, qué emoción transmite, qué tipo de "
    "público puede atraer y qué promesa puede comunicar.\n"
    "Crea textos para una publicación en formato ";

constexpr QStringView middle =
    u", combinando obligatoriamente:\n"
    "1. Lo que se ve en la imagen.\n"
    "2. El objetivo estratégico de la publicación.\n"
    "3. Buenas prácticas de copy para redes: claridad inmediata, deseo, beneficio concreto y "
    "llamada a la acción.\n"
    "Objetivo estratégico: ";

constexpr QStringView generalAim = u"captar atención, generar interés y provocar una acción clara";

constexpr QStringView closing =
    u".\n"
    "Devuelve solo JSON válido, sin Markdown, sin explicación y sin puntos suspensivos.\n"
    "Las claves exactas son: title, subtitle, tagline, callToAction, publicationCaption.\n"
    "Escribe en español natural, comercial y elegante.\n"
    "El title debe tener menos de 42 caracteres, subtitle menos de 90, tagline debe ser un párrafo "
    "breve de 120 a 220 caracteres, callToAction debe tener 2 a 4 palabras y menos de 24 "
    "caracteres, y publicationCaption de 450 a 900 caracteres.\n"
    "title: gancho principal, corto, potente y visual.\n"
    "subtitle: beneficio o argumento conectado al objetivo.\n"
    "tagline: párrafo más amplio, específico y persuasivo, conectado al objetivo y a lo que se ve "
    "en la imagen.\n"
    "callToAction: texto de botón, imperativo, directo y accionable. No es una frase descriptiva. "
    "No expliques beneficios. No uses puntos. Ejemplos válidos: \"Reserva ahora\", \"Comprar "
    "ahora\", \"Descubre más\", \"Pide tu cita\", \"Ver colección\".\n"
    "publicationCaption: texto completo para la publicación en redes, con tono natural, beneficio, "
    "contexto, llamada a la acción y 3 a 8 hashtags relevantes al final.\n"
    "Los cuatro primeros valores deben ser textos finales listos para poner encima de la imagen. "
    "publicationCaption no va sobre la imagen. No uses placeholders, etiquetas, puntos suspensivos "
    "ni frases genéricas.";

}    // namespace

QString CopyPromptBuilder::marketing(const QString& objective, SocialFormat format)
{
    const QString aim = objective.isEmpty() ? generalAim.toString() : objective;
    return opening.toString() + row(format).templateKey.toString() + middle.toString() + aim +
           closing.toString();
}

QString CopyPromptBuilder::withoutControlWords(const QString& objective)
{
    static const QRegularExpression word(
        u"<__\\w+__>|<\\|[^\\s<>]+>|<[^\\s<>]+\\|>|"
        "<(?:bos|eos|pad|unk|mask|unused\\d+|(?:start|end)_of_\\w+|\\w+_soft_token)>"_s);
    QString text = objective;
    // A blank stays in the word's place: what stood around it could join to another one.
    text.replace(word, u" "_s);
    return text == objective ? objective : text.trimmed();
}
