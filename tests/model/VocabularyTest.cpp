#include "model/CodableColor.h"
#include "model/CopyGenerationMode.h"
#include "model/CopySlot.h"
#include "model/ImagePlacement.h"
#include "model/LayerTextAlignment.h"
#include "model/ShapeLayer.h"
#include "model/SocialFormat.h"

#include <QSet>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

// Files written by earlier versions contain these words.
TEST(Vocabulary, storedWordsNeverChange)
{
    const auto words = []<typename E>(E) {
        QStringList list;
        for (const E value : allCases<E>()) {
            list.append(rawValue(value));
            EXPECT_EQ(fromRawValue<E>(list.last()), value);
        }
        return list.join(u'|');
    };
    EXPECT_EQ(words(SocialFormat()),
              u"Story / Reel|Horizontal|Carrusel / Post vertical|Post cuadrado"_s);
    EXPECT_EQ(words(CopySlot()), u"Título|Subtítulo|Tagline|CTA"_s);
    EXPECT_EQ(words(ImageFitMode()), u"Llenar|Encajar"_s);
    EXPECT_EQ(words(LayerTextAlignment()), u"leading|center|trailing|justified"_s);
    EXPECT_EQ(words(ShapeKind()), u"Rectángulo|Círculo|Triángulo|Línea"_s);
    EXPECT_EQ(words(CopyGenerationMode()), u"Local|Nube"_s);
    EXPECT_EQ(words(LocalAIEngine()), u"gemma-4-e2b"_s);
}

TEST(Vocabulary, theShownNameOfTheTaglineIsNoRawValue)
{
    EXPECT_EQ(fromRawValue<CopySlot>(u"Párrafo"), std::nullopt);
    EXPECT_EQ(storedValue(u"Párrafo"), CopySlot::tagline);
    EXPECT_EQ(storedValue(u"Tagline"), CopySlot::tagline);
    EXPECT_EQ(storedValue(u"párrafo"), std::nullopt);
}

TEST(Vocabulary, templateKeysAreExact)
{
    EXPECT_EQ(fromTemplateKey(u"square"), SocialFormat::square);
    EXPECT_EQ(fromTemplateKey(u"Square"), std::nullopt);
    EXPECT_EQ(fromTemplateKey(u" square"), std::nullopt);
    EXPECT_EQ(fromTemplateKey(u"Post cuadrado"), std::nullopt);
}

TEST(Vocabulary, aspectRatiosAreThoseOfTheExportSizes)
{
    for (const SocialFormat format : allCases<SocialFormat>()) {
        const QSizeF size = exportSize(format);
        EXPECT_DOUBLE_EQ(row(format).aspectRatio, size.width() / size.height());
    }
}

TEST(Vocabulary, casesKeepDistinctIcons)
{
    const auto distinct = []<typename E>(E) {
        QSet<QString> icons;
        for (const E value : allCases<E>())
            icons.insert(row(value).icon.toString());
        return icons.size() == qsizetype(allCases<E>().size());
    };
    EXPECT_TRUE(distinct(SocialFormat()));
    EXPECT_TRUE(distinct(CopySlot()));
    EXPECT_TRUE(distinct(ImageFitMode()));
    EXPECT_TRUE(distinct(LayerTextAlignment()));
    EXPECT_TRUE(distinct(ShapeKind()));
}

TEST(CodableColor, hexadecimalFormReadsBackAndRefusesTheRest)
{
    EXPECT_EQ(CodableColor(1, 0.5, 0).hexRGB(), u"#FF8000"_s);
    EXPECT_EQ(CodableColor(2, -1, std::nan("")).hexRGB(), u"#FF0000"_s);
    EXPECT_EQ(CodableColor::fromHexRGB(u"#e4572E")->hexRGB(), u"#E4572E"_s);
    EXPECT_EQ(CodableColor::fromHexRGB(u"e4572e")->hexRGB(), u"#E4572E"_s);
    for (const QStringView bad :
         {u"", u"#", u"#fff", u"##ffffff", u"#12345g", u"#1234567", u"+12345"})
        EXPECT_EQ(CodableColor::fromHexRGB(bad), std::nullopt) << qPrintable(bad.toString());
}

TEST(CodableColor, aGivenOpacityReplacesItsOwn)
{
    const CodableColor half(0, 0, 1, 0.5);
    EXPECT_NEAR(half.color().alphaF(), 0.5, 0.01);
    EXPECT_NEAR(half.withAlpha(0.25).alphaF(), 0.25, 0.01);
    EXPECT_EQ(half.withAlpha(7).alpha(), 255);
}
