#include "copygen/CopyFallback.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(CopyFallback, phrasesFollowLabelsObjectiveAndFormat)
{
    const GeneratedCopy story =
        composeCopy({}, u" Vender MÁS \n"_s, SocialFormat::storyReel, u"Motor"_s);
    EXPECT_EQ(story,
              GeneratedCopy(u"La Imagen"_s, u"Una propuesta visual para vender más."_s,
                            u"Claro. Directo. Memorable."_s, u"Desliza y descubre"_s,
                            u"Hay imágenes que no solo se miran: activan una intención. Esta "
                            "propuesta visual está pensada para vender más, conectando lo que se "
                            "ve con una llamada clara a la acción. Guárdalo, compártelo o desliza "
                            "para descubrir más. #Moltiva #DiseñoSocial #MarketingVisual"_s,
                            u"Motor. Etiquetas: sin etiquetas claras."_s));

    const GeneratedCopy square =
        composeCopy({u"Street food"_s, u"ñoquis al SOL"_s, u"mesa"_s, u"cielo"_s}, u" \t"_s,
                    SocialFormat::square, u"Motor"_s);
    EXPECT_EQ(square,
              GeneratedCopy(u"Sabor que se recuerda"_s,
                            u"Una propuesta visual para captar atención."_s,
                            u"Ñoquis Al Sol, Mesa"_s, u"Quiero saber más"_s,
                            u"Hay imágenes que no solo se miran: activan una intención. Esta "
                            "propuesta visual está pensada para captar atención, conectando lo que "
                            "se ve con una llamada clara a la acción. Descubre más y da el "
                            "siguiente paso. #Moltiva #DiseñoSocial #MarketingVisual"_s,
                            u"Motor. Etiquetas: Street food, ñoquis al SOL, mesa, cielo."_s));
}

TEST(CopyFallback, aHeadlineForWhatIsSeen)
{
    struct {
        QString label, headline;
    } const rows[] = {
        {u"FOOD-truck"_s, u"Sabor que se recuerda"_s},
        {u"sky over a dish"_s, u"Sabor que se recuerda"_s},
        {u"a Portrait in a room"_s, u"Una historia con presencia"_s},
        {u"bedroom"_s, u"Un espacio para vivirlo"_s},
        {u"Skyline"_s, u"Respira este momento"_s},
        {u"élan-vital DE l'été  x"_s, u"Élan Vital De L'été  X"_s},
        {u"fo-od"_s, u"Fo Od"_s},
        {QString(), QString()},
    };
    for (const auto& row : rows)
        EXPECT_EQ(headline(row.label), row.headline);
}
