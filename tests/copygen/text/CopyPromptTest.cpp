#include "copygen/text/CopyPrompt.h"

#include <QCryptographicHash>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(CopyPrompt, asksForTheFormatAndTheObjectiveAsTheyAre)
{
    struct {
        QString objective;
        SocialFormat format;
        QString formatKey, aim;
    } const rows[] = {
        {u" Vender más. "_s, SocialFormat::storyReel, u"story-reel"_s, u" Vender más. "_s},
        {u"%1 \\n \"{}\""_s, SocialFormat::carouselPortrait, u"carousel-portrait"_s,
         u"%1 \\n \"{}\""_s},
        {u"  "_s, SocialFormat::horizontal, u"horizontal"_s, u"  "_s},
        {u""_s, SocialFormat::square, u"square"_s,
         u"captar atención, generar interés y provocar una acción clara"_s},
    };
    for (const auto& row : rows) {
        const QString prompt = CopyPromptBuilder::marketing(row.objective, row.format);
        EXPECT_TRUE(prompt.contains(u"publicación en formato "_s + row.formatKey +
                                    u", combinando obligatoriamente:\n1. Lo que"_s));
        EXPECT_TRUE(prompt.contains(u"acción.\nObjetivo estratégico: "_s + row.aim +
                                    u".\nDevuelve solo JSON válido"_s))
            << qPrintable(prompt);
    }
    // Any word more or less makes other copy, on this machine and from the cloud.
    const QByteArray wording = CopyPromptBuilder::marketing({}, SocialFormat::square).toUtf8();
    EXPECT_EQ(QCryptographicHash::hash(wording, QCryptographicHash::Sha256).toHex(),
              "613061f8bbb3ca87f3a27dc818a5d694b9d2ded61aeb2a87a74efd2706217157")
        << wording.constData();
}

TEST(CopyPrompt, theObjectiveHoldsNothingThatAnEngineObeys)
{
    struct {
        QString objective, kept;
    } const rows[] = {
        {u"Vender más"_s, u"Vender más"_s},
        {u" <3 a < b > c, <b>oferta</b> | 2x1 "_s, u" <3 a < b > c, <b>oferta</b> | 2x1 "_s},
        {u"Vender<__media__>más"_s, u"Vender más"_s},
        {u"a<turn|>b<|turn>c<|channel>d<channel|>e<|think|>f<|image|>"_s, u"a b c d e f"_s},
        {u"a<eos>b<bos>c<start_of_turn>d<unused12>e<|\"|>f"_s, u"a b c d e f"_s},
        {u"<tu<turn|>rn|>"_s, u"<tu rn|>"_s},
        {u"<__media__> <|turn>"_s, u""_s},
    };
    for (const auto& row : rows)
        EXPECT_EQ(CopyPromptBuilder::withoutControlWords(row.objective), row.kept);
}
