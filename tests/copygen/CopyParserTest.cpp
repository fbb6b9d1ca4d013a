#include "copygen/CopyParser.h"

#include "copygen/CopyFallback.h"
#include "tests/copygen/ModelAnswers.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr SocialFormat story = SocialFormat::storyReel;
const QString objective = u"vender"_s;

GeneratedCopy composed()
{
    return composeCopy({}, objective, story, u"Gemma 4 E2B local"_s);
}

// Copy with the texts that are given, in the order of the fields, and composed ones for the others.
GeneratedCopy copyOf(const QStringList& texts, const CopyWording& wording)
{
    const GeneratedCopy other = composed();
    const auto text = [&](int i, const QString& fallback) {
        return texts.value(i).isEmpty() ? fallback : texts[i];
    };
    return GeneratedCopy(text(0, other.title), text(1, other.subtitle), text(2, other.tagline),
                         text(3, other.callToAction), text(4, other.publicationCaption),
                         wording.imageNotes);
}

GeneratedCopy parsed(const QString& raw, const CopyWording& wording = CopyWording::mlx())
{
    return parseGeneratedCopy(raw, objective, story, wording);
}

}    // namespace

TEST(CopyParser, fieldsOfAnObjectOrThePhrase)
{
    const QString object =
        u"{\"title\": %1, \"subtitle\": \"s\", \"tagline\": \"g\", \"callToAction\": %2, \"x\": 1}"_s;
    struct {
        QString title, action;
        QStringList texts;
    } const rows[] = {
        {u"\"t\""_s, u"\"¡Ven!\""_s, {u"t"_s, u"s"_s, u"g"_s, u"Ven"_s}},
        {u"\"\\\"t\\\"\""_s, u"\"N/A\""_s, {u"t"_s, u"s"_s, u"g"_s}},
        {u"\"…\""_s,
         u"\"Haz ya tu RÉSERVA de mesa hoy.\""_s,
         {{}, u"s"_s, u"g"_s, u"Reserva ahora"_s}},
        {u"\"null\""_s, u"\"\""_s, {{}, u"s"_s, u"g"_s}},
        {u"null"_s, u"[\"Ven\"]"_s, {{}, u"s"_s, u"g"_s}},
    };
    for (const CopyWording& wording : {CopyWording::mlx(), CopyWording::llamaCpp()}) {
        for (const auto& row : rows)
            EXPECT_EQ(
                parsed(u"¡Claro! "_s + object.arg(row.title, row.action) + u" Adiós"_s, wording),
                copyOf(row.texts, wording))
                << qPrintable(row.title);
    }
    EXPECT_EQ(CopyWording::mlx().imageNotes, u"Analizado con Gemma 4 E2B local via MLX."_s);
    EXPECT_EQ(CopyWording::llamaCpp().imageNotes,
              u"Analizado con Gemma 4 E2B local via llama.cpp."_s);
}

TEST(CopyParser, linesWhereThereIsNoObject)
{
    struct {
        QString raw;
        QStringList texts;
    } const rows[] = {
        {u"SUBTITLE: B\nTITLE: A"_s, {u"B"_s, u"B"_s}},
        {u"Title: A\nsubtitle: B\nTagline: C\nCTA: Ven\nCaption: D"_s,
         {u"A"_s, u"B"_s, u"C"_s, u"Ven"_s, u"D"_s}},
        {u"TITLE: A las 10:00: ven\u2028CALL TO ACTION : Ya"_s,
         {u"A las 10:00: ven"_s, {}, {}, u"Ya"_s}},
        {u"title A\ntitle: B"_s, {}},
        {u"Título: A\ntitulo: \"B\"\r\nTEXTO DE PUBLICACION: C\rcta:…"_s,
         {u"B"_s, {}, {}, {}, u"C"_s}},
        {u"{\"title\": \"A\",\n\"tagline\": \"B\",}"_s, {u"A,"_s, {}, u"B,}"_s}},
        {u"[\"title: A\"]"_s, {u"A]"_s}},
        {u""_s, {}},
    };
    for (const auto& row : rows) {
        GeneratedCopy expected = copyOf(row.texts, CopyWording::mlx());
        const GeneratedCopy copy = parsed(row.raw);
        EXPECT_TRUE(copy.imageNotes.startsWith(expected.imageNotes + u' ')) << qPrintable(row.raw);
        expected.imageNotes = copy.imageNotes;
        EXPECT_EQ(copy, expected) << qPrintable(row.raw);
    }

    const QString family = u"👩\u200d👩\u200d👧\u200d👦"_s;
    EXPECT_EQ(parsed(family.repeated(241)).imageNotes,
              CopyWording::mlx().imageNotes + u' ' + family.repeated(240));
    EXPECT_LT(parsed(u"a"_s + QString(1'000'000, QChar(0x301))).imageNotes.size(), 5000);
}

TEST(CopyParser, answersOfModels)
{
    using namespace modelAnswers;
    const auto part = [](QStringView raw, const QString& from, const QString& to) {
        const qsizetype begin = raw.indexOf(from);
        return raw.mid(begin, raw.indexOf(to, begin) + to.size() - begin).toString();
    };
    const auto fence = [&](auto... ends) { return part(fenceWithProse, ends...); };
    const auto pretty = [&](auto... ends) { return part(truncatedPrettyAtLimit, ends...); };
    const auto compact = [&](auto... ends) { return part(truncatedCompactInFence, ends...); };
    const auto curly = [&](auto... ends) { return part(mixedCurlyQuotes, ends...); };
    const auto twice = [&](auto... ends) { return part(duplicateKeysPlaceholderFirst, ends...); };
    const auto lines = [&](auto... ends) { return part(rawNewlinesInString, ends...); };
    const QString oneLine = compact(u"\"Tu casa"_s, u"estanter"_s).remove(u'"');
    const QString braces = u"{title: Pedalea tu ciudad} cumple."_s;

    struct {
        QStringView raw;
        bool isObject;
        QStringList texts;
        QStringList closed;    // the texts where cut answers are closed, if they differ
    } const rows[] = {
        {fenceWithProse,
         true,
         {u"Café que despierta ideas"_s, fence(u"Tu pausa"_s, u"tueste lento"_s),
          fence(u"Granos"_s, u"su día."_s), u"Reserva ahora"_s,
          fence(u"El primer"_s, u"#Barrio"_s)},
         {}},
        {truncatedPrettyAtLimit,
         false,
         {u"Verano a flor de piel,"_s,
          u"Protección ligera que se nota desde el primer minuto al sol,"_s,
          pretty(u"Una textura"_s, u"todo el día."_s) + u',', u"Descubre más"_s,
          pretty(u"Hay veranos"_s, u"la talla viaj"_s)},
         {u"Verano a flor de piel"_s,
          u"Protección ligera que se nota desde el primer minuto al sol"_s,
          pretty(u"Una textura"_s, u"todo el día."_s), u"Descubre más"_s,
          pretty(u"Hay veranos"_s, u"se va la gente."_s)}},
        {truncatedCompactInFence,
         false,
         {oneLine, oneLine, oneLine, u"Ver colección"_s, oneLine},
         {u"Tu casa, en calma"_s, compact(u"Muebles"_s, u"quedarse"_s),
          compact(u"Diseño"_s, u"pisos pequeños."_s), u"Ver colección"_s,
          compact(u"A veces"_s, u"dar explicaciones."_s)}},
        {thoughtTextWithBraces, false, {braces, braces, braces, u"Descubre más"_s, braces}, {}},
        {mixedCurlyQuotes,
         false,
         {u"“Luz que abraza”,"_s, u"Velas de soja hechas a mano, gota a gota”,"_s,
          curly(u"“Aromas"_s, u"pantallas.”,"_s), u"“Ver colección”"_s,
          curly(u"“Enciende"_s, u"#Otoño”"_s)},
         {}},
        {duplicateKeysPlaceholderFirst,
         true,
         {u"Tu sonrisa, sin esperas"_s, u"Primera revisión dental en menos de 48 horas"_s,
          twice(u"Un equipo"_s, u"una llamada."_s), u"Pide tu cita"_s,
          twice(u"Sabemos"_s, u"#Sonrisa"_s)},
         {}},
        {rawNewlinesInString,
         false,
         {u"Viaja ligero,"_s, u"La maleta de cabina que cumple lo que promete,"_s,
          lines(u"Ruedas"_s, u"usas."_s), u"Descubre más"_s,
          u"Checklist para tu próxima escapada:"_s},
         {}},
        {wrappedAndWrongTypes, true, {}, {}},
    };
    for (const auto& row : rows) {
        for (const CopyWording& wording : {CopyWording::mlx(), CopyWording::llamaCpp()}) {
            const bool isClosed = wording.closesCutAnswers && !row.closed.isEmpty();
            GeneratedCopy expected = copyOf(isClosed ? row.closed : row.texts, wording);
            if (!row.isObject && !isClosed)
                expected.imageNotes += u' ' + row.raw.left(240).toString();
            EXPECT_EQ(parsed(row.raw.toString(), wording), expected)
                << qPrintable(row.raw.left(60).toString());
        }
    }
}

TEST(CopyParser, outputIsTextOrNothing)
{
    const CopyWording mlx = CopyWording::mlx(), llama = CopyWording::llamaCpp();
    struct {
        QByteArray output;
        std::optional<QString> plain, closed;
    } const rows[] = {
        {"", std::nullopt, std::nullopt},
        {"\n\n\n", u"\n\n\n"_s, std::nullopt},
        {"\n{\xc3\xa9}\n", u"\n{é}\n"_s, u"{é}"_s},
        {"a\xc3", std::nullopt, u"a"_s},
        {"a\xf0\x9f\x98\n\n", std::nullopt, u"a"_s},
        {"a\xf0\x9f\x98\x80", u"a😀"_s, u"a😀"_s},
        {"\xe2\x80", std::nullopt, std::nullopt},
        {"a\xc3z", std::nullopt, std::nullopt},
        {"a\x80\x80\x80\x80\x80", std::nullopt, std::nullopt},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(answerText(row.output, mlx), row.plain) << row.output.toHex().constData();
        EXPECT_EQ(answerText(row.output, llama), row.closed) << row.output.toHex().constData();
    }
}
