#include "copygen/text/CopyAnswer.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// Two sentences of 60 characters each, counted with the blank between them.
const QString twoSentences = u"El primer sorbo lo cambia todo y el reloj por fin se afloja. "
                             "¿Te vienes mañana a probar el tueste nuevo de esta semana ya?"_s;

std::optional<QString> captionOf(const QString& inside)
{
    const auto answer =
        readClosedCopyAnswer(u"{\"title\":\"T\",\"publicationCaption\" :\n\""_s + inside);
    EXPECT_TRUE(answer && answer->title == u"T"_s) << qPrintable(inside);
    return answer ? answer->publicationCaption : std::nullopt;
}

}    // namespace

TEST(CopyAnswer, theObjectGoesFromTheFirstBraceToTheLast)
{
    struct {
        QString raw;
        std::optional<QString> object;
    } const rows[] = {
        {u"Claro: {\"a\": {}} ¡Listo!"_s, u"{\"a\": {}}"_s},
        {u"{a} y {b}"_s, u"{a} y {b}"_s},
        {u"}{"_s, std::nullopt},
        {u"{\"a\""_s, std::nullopt},
        {u"a}"_s, std::nullopt},
        {u""_s, std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(extractJSONObject(row.raw), row.object) << qPrintable(row.raw);
}

TEST(CopyAnswer, cleaningTakesQuotationMarksAndPlaceholdersAway)
{
    struct {
        std::optional<QString> value;
        QString clean;
    } const rows[] = {
        {std::nullopt, u"F"_s},   {u""_s, u"F"_s},
        {u" \n\t "_s, u"F"_s},    {u"\" … \""_s, u"F"_s},
        {u"."_s, u"F"_s},         {u".."_s, u"F"_s},
        {u"..."_s, u"F"_s},       {u"\"N/A\""_s, u"F"_s},
        {u"null"_s, u"F"_s},      {u"\x01\x02"_s, u"F"_s},
        {u"Null"_s, u"Null"_s},   {u"n/a"_s, u"n/a"_s},
        {u"...."_s, u"...."_s},   {u" \"El \"mejor\" café\"\n"_s, u"El mejor café"_s},
        {u"“Luz”"_s, u"“Luz”"_s}, {u"una\r\ndos\u2028tres\x07"_s, u"una\ndos\ntres"_s},
    };
    for (const auto& row : rows)
        EXPECT_EQ(cleanText(row.value, u"F"_s), row.clean)
            << qPrintable(row.value.value_or(u"-"_s));
}

TEST(CopyAnswer, onlyTextsOfTheFiveKeysCount)
{
    const auto answer = readCopyAnswer(
        u"x {\"title\": 5, \"subtitle\": \"a\", \"otra\": [{}], \"callToAction\": null, "
        "\"subtitle\": \"b\\u00e9\\ud83d\\ude00\\n\", \"Tagline\": \"no\", "
        "\"publicationCaption\": \"c\", \"publicationCaption\": {}} y"_s);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->title, std::nullopt);
    EXPECT_EQ(answer->subtitle, u"bé😀\n"_s) << "the last of two counts";
    EXPECT_EQ(answer->tagline, std::nullopt);
    EXPECT_EQ(answer->callToAction, std::nullopt);
    EXPECT_EQ(answer->publicationCaption, std::nullopt);

    QString manyKeys = u"{\"title\":\"T\""_s;
    for (int i = 0; i < 1000; ++i)
        manyKeys += u",\"%1\":0"_s.arg(i);
    for (const QString& none :
         {QString(), u"[1]"_s, u"{\"title\": \"T\",}"_s, u"{\"title\": \"a\nb\"}"_s,
          u"{\"title\":"_s + QString(100'000, u'[') + u"}"_s, manyKeys + u'}'})
        EXPECT_FALSE(readCopyAnswer(none)) << qPrintable(none.left(40));
}

TEST(CopyAnswer, anOpenObjectIsClosedAfterItsLastCompleteMember)
{
    struct {
        QString raw;
        std::optional<QString> closed;
    } const rows[] = {
        {u"\n{"_s, u"{}"_s},
        {u"{ \"tit"_s, u"{}"_s},
        {u"{ \"title\" : \"rema\n\n"_s, u"{}"_s},
        {u"{\"a\":\"x\""_s, u"{\"a\":\"x\"}"_s},
        {u"```json\n{\"a\":\"x\"\n```\n"_s, u"{\"a\":\"x\"}"_s},
        {u"{\"a\":\"x\",\n"_s, u"{\"a\":\"x\"}"_s},
        {u"{\"a\":\"x\", \"b\":\"y\\\""_s, u"{\"a\":\"x\"}"_s},
        {u"{\"a\":\"x, {y}\", \"b\""_s, u"{\"a\":\"x, {y}\"}"_s},
        {u"{\"a\":12"_s, u"{}"_s},
        {u"{\"a\":\"x \\\", y\", \"b"_s, u"{\"a\":\"x \\\", y\"}"_s},
        {u"{\"a\":[1,{\"b\":2}]"_s, u"{\"a\":[1,{\"b\":2}]}"_s},
        {u"{\"a\":\"x\",\"b\":[\"y\",\"z\""_s, u"{\"a\":\"x\"}"_s},
        {u"{\"a\":\"x\",\"b\":[1},\"c\":\"z\""_s, u"{\"a\":\"x\"}"_s},
        {u"{\"a\":\"x\",b:\"y\",\"c\":\"z\""_s, u"{\"a\":\"x\"}"_s},
        {u"{\"a\":\"El \"mejor\" caf"_s, u"{}"_s},
        {u"{\"a\":\"El \"mejor caf"_s, u"{}"_s},
        {u"{a} piensa {\"b\":\"x\", \"c"_s, u"{\"b\":\"x\"}"_s},
        // Not cut off: these stay as they are.
        {u""_s, std::nullopt},
        {u"TITLE: \"a"_s, std::nullopt},
        {u"{\"a\":\"x\",}"_s, std::nullopt},
        {u"{\"a\":\"El \"mejor café\",\n\"b\":\"y\"\n}\n```"_s, std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(closedObject(row.raw), row.closed) << qPrintable(row.raw);

    const QString deep = u"{\"title\":\"T\",\"a\":"_s + QString(100'000, u'[');
    EXPECT_EQ(closedObject(deep), u"{\"title\":\"T\"}"_s);
    EXPECT_FALSE(readClosedCopyAnswer(u"{\"title\":\"T\",}"_s));
    EXPECT_EQ(readClosedCopyAnswer(u"{\"title\":\"T\"} Espero que te guste :-{"_s)->title, u"T"_s);
}

TEST(CopyAnswer, aCutCaptionEndsWithItsLastCompleteSentence)
{
    struct {
        QString label, inside;
        std::optional<QString> kept;
    } const rows[] = {
        {u"inside a word"_s, twoSentences + u" Guárdalo par"_s, twoSentences},
        {u"behind a sentence"_s, twoSentences, twoSentences},
        {u"line ends of the engine"_s, twoSentences + u" Gu\n\n"_s, twoSentences},
        {u"inside an escape"_s, twoSentences + u" Gu\\u00e"_s, twoSentences},
        {u"between surrogates"_s, twoSentences + u" \\ud83d\\"_s, twoSentences},
        {u"in a hashtag"_s, twoSentences + u" 😀 #Café #Bar"_s, twoSentences},
        {u"escaped line ends"_s, twoSentences + u"\\n\\nGuá"_s, twoSentences},
        {u"line ends as they are"_s, u"Hoy:\n"_s + twoSentences + u"\nGuá"_s,
         u"Hoy:\n"_s + twoSentences},
        {u"inside a number"_s, twoSentences + u" Solo 1."_s, twoSentences},
        {u"inside a list"_s, twoSentences + u"\\n1. Pide\\n2. Gu"_s, twoSentences},
        {u"behind a short form"_s, twoSentences + u" Cuesta aprox. doce"_s, twoSentences},
        {u"too little is left"_s, twoSentences.chopped(1) + u", sí"_s, std::nullopt},
        {u"no sentence"_s, QString(500, u'a'), std::nullopt},
        {u"an escape that is none"_s, twoSentences + u" \\q xxxxxxxxxxxx"_s, std::nullopt},
        {u"nothing"_s, QString(), std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(captionOf(row.inside), row.kept) << qPrintable(row.label);

    const auto cutTagline = readClosedCopyAnswer(u"{\"tagline\":\""_s + twoSentences);
    EXPECT_EQ(cutTagline->tagline, std::nullopt) << "a text on the image is whole or missing";
    EXPECT_EQ(cutTagline->publicationCaption, std::nullopt);
}
