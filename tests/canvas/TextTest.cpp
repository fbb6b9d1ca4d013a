#include "canvas/TextFitting.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QPainter>
#include <QRandomGenerator>

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace ExportCanvasRenderer;

namespace {

TextLayer layerOf(CopySlot slot, const QString& text)
{
    return TextLayer(QUuid::createUuid(), slot, text, true, {});
}

// The fitted font size by its definition: tries every size.
double fittedSlowly(const TextLayer& layer, QSizeF area, double s)
{
    const double shares[4][2] = {{0.42, 0.13}, {0.34, 0.075}, {0.42, 0.08}, {0.42, 0.085}};
    const auto& share = shares[int(layer.slot)];
    const double base = std::min(area.height() * share[0], area.width() * share[1]);
    const double start = clamp(base * layer.fontScale, 8 * s, 128 * s);
    for (int k = 0;; ++k) {
        const double size = start - k * std::max(1.0, s);
        if (!(size > 8 * s))
            return 8 * s;
        const QSizeF measured =
            TextLayoutMetrics::measuredSize(styledText(layer, size), area.width());
        if (measured.width() <= area.width() + 0.5 && measured.height() <= area.height() + 0.5)
            return size;
    }
}

}    // namespace

TEST(TextFitting, skipsOnlySizesThatCannotFit)
{
    const QStringList texts{u"Tu próximo momento"_s,
                            u"Una imagen lista para contar una historia."_s,
                            u"Otorrinolaringólogo"_s,
                            u"a b c d e f g h i j k l m n o p q r s t u v w x y z"_s,
                            u"Línea una\nlínea dos\r\nlínea tres"_s,
                            u"مرحبا بالعالم هذا نص طويل"_s,
                            u"Sol ☀️ y playa 🏖️ todo el año"_s,
                            u"ancho\u3000y\u2003más\u3000ancho\u2003todavía\u3000sí"_s,
                            u"😀 😀 😀 🏖️ ⭐"_s,
                            u"palabra "_s.repeated(60)};
    for (const QString& text : texts) {
        for (const CopySlot slot : allCases<CopySlot>()) {
            for (const QSizeF area : {QSizeF(802, 176), QSizeF(300, 90), QSizeF(120, 400)}) {
                TextLayer layer = layerOf(slot, text);
                layer.fontScale = 1.7;
                EXPECT_DOUBLE_EQ(fittedFontSize(layer, area, 2), fittedSlowly(layer, area, 2))
                    << qPrintable(text) << " in " << area.width();
            }
        }
    }
}

TEST(TextFitting, alignmentChangesNeitherSizeNorLines)
{
    const QStringList texts{u"Respira otoño en los Picos de Europa"_s,
                            u"Casas rurales con chimenea, a un paso del sendero y de la sierra"_s,
                            u"Una palabra larguísima: otorrinolaringología"_s,
                            u"مرحبا (بالعالم)! هذا نص طويل"_s,
                            u"Sol ☀️ y playa\nun día 🏖️"_s};
    QRandomGenerator random(11);
    for (int i = 0; i < 500; ++i) {
        TextLayer layer = layerOf(CopySlot(i % 4), texts[i % texts.size()]);
        layer.fontScale = 0.5 + 2.5 * random.generateDouble();
        const QSizeF area(40 + 1000 * random.generateDouble(), 30 + 300 * random.generateDouble());
        layer.alignment = LayerTextAlignment::leading;
        const LaidOutText flushLeft = fittedText(layer, area, 2);
        EXPECT_EQ(flushLeft.measuredRect(), flushLeft.usedRect());
        for (const LayerTextAlignment alignment : allCases<LayerTextAlignment>()) {
            layer.alignment = alignment;
            const LaidOutText text = fittedText(layer, area, 2);
            EXPECT_EQ(text.fontSize(), flushLeft.fontSize()) << area.width();
            EXPECT_EQ(text.lineCount(), flushLeft.lineCount()) << area.width();
            EXPECT_EQ(text.measuredRect(), flushLeft.measuredRect()) << area.width();
        }
    }
    TextLayer justified = layerOf(CopySlot::title, texts[0]);
    justified.alignment = LayerTextAlignment::justified;
    EXPECT_NEAR(LaidOutText(styledText(justified, 40), 400).usedRect().width(), 400, 1)
        << "drawn from edge to edge";
}

TEST(TextFitting, boundsHoldWhateverTheText)
{
    EXPECT_EQ(fittedFontSize(layerOf(CopySlot::title, u"x"_s), {8, 100}, 2), 16);
    EXPECT_EQ(fittedFontSize(layerOf(CopySlot::title, u"x"_s), {100, -5}, 2), 16);
    TextLayer large = layerOf(CopySlot::title, {});
    large.fontScale = 100;
    EXPECT_EQ(fittedFontSize(large, {800, 800}, 2), 256) << "an empty text fits where it starts";
    EXPECT_EQ(fittedFontSize(large, {800, 200}, 2), 256) << "also where no line would fit";
    large.fontScale = -3;
    EXPECT_EQ(fittedFontSize(large, {800, 800}, 2), 16);
    EXPECT_EQ(fittedFontSize(layerOf(CopySlot::title, u"palabra "_s.repeated(2000)), {400, 100}, 2),
              16);
}

TEST(TextFitting, designScaleIsThatOfTheTighterSide)
{
    EXPECT_EQ(designScale({1080, 1350}, {540, 675}), 2);
    EXPECT_EQ(designScale({1080, 1350}, {540, 1350}), 1);
    EXPECT_EQ(designScale({1080, 1350}, {1, 675}), 1);
}

TEST(TextFitting, namedFontsAreFoundByFullNameAndFamilyAndElseReplaced)
{
    if (!QFontDatabase::hasFamily(u"Inter"_s))
        GTEST_SKIP() << "Inter is not installed";
    const auto weightOf = [](const QString& fontName, CopySlot slot = CopySlot::callToAction) {
        TextLayer layer = layerOf(slot, {});
        layer.fontName = fontName;
        const QFontInfo info(nsFont(layer, 20).face);
        return std::pair(info.family().section(u' ', 0, 0), info.weight());
    };
    EXPECT_EQ(weightOf(u"System"_s, CopySlot::title), std::pair(u"Inter"_s, int(QFont::Black)));
    EXPECT_EQ(weightOf(u"System"_s, CopySlot::tagline),
              std::pair(u"Inter"_s, int(QFont::DemiBold)));
    EXPECT_EQ(weightOf(u"System"_s), std::pair(u"Inter"_s, int(QFont::Bold)));
    EXPECT_EQ(weightOf(u"No Such Font"_s), weightOf(u"System"_s));
    EXPECT_EQ(weightOf(QString()), weightOf(u"System"_s));
    EXPECT_EQ(weightOf(u"Inter"_s).second, QFont::Normal);
    EXPECT_EQ(weightOf(u"Inter Light"_s).second, QFont::Light);
    EXPECT_EQ(weightOf(u"Inter Display Black"_s).second, QFont::Black);
    // The font files do not have these style names, as on a system in another language.
    EXPECT_EQ(weightOf(u"Inter Demi Bold"_s).second, QFont::DemiBold);
    EXPECT_EQ(weightOf(u"Inter Negrita"_s), weightOf(u"System"_s));
}

TEST(TextLayoutMetrics, emptyTextMeasuresNothing)
{
    const StyledText empty = styledText(layerOf(CopySlot::title, {}), 40);
    EXPECT_EQ(TextLayoutMetrics::measuredRect(empty, 300), QRectF());
    EXPECT_EQ(
        TextLayoutMetrics::measuredRect(styledText(layerOf(CopySlot::title, u"Hola"_s), 40), 1),
        QRectF());
    EXPECT_EQ(TextLayoutMetrics::verticallyCenteredRect(empty, QRectF(10, 20, 100, 60)),
              QRectF(10, 50, 100, 1));
}

TEST(TextLayoutMetrics, tallTextStartsAtTheTopOfItsBox)
{
    const StyledText text = styledText(layerOf(CopySlot::title, u"uno dos tres cuatro"_s), 40);
    const QRectF box(10, 20, 100, 60);
    const QRectF placed = TextLayoutMetrics::verticallyCenteredRect(text, box);
    EXPECT_GT(TextLayoutMetrics::measuredSize(text, 100).height(), 60);
    EXPECT_EQ(placed, QRectF(10, 20, 100, 60));
}

// A text must break into the same lines at every size at which it is shown.
TEST(TextLayoutMetrics, linesDependOnProportionsAlone)
{
    const QString text = u"Casas rurales con chimenea, a un paso del sendero y de la sierra"_s;
    for (int step = 0; step < 39; ++step) {
        const double size = 9 * std::pow(1.07, step);
        const StyledText small = styledText(layerOf(CopySlot::subtitle, text), size);
        const StyledText twice = styledText(layerOf(CopySlot::subtitle, text), 2 * size);
        const LaidOutText one(small, 7 * size), two(twice, 14 * size);
        EXPECT_EQ(one.lineCount(), two.lineCount()) << size;
        EXPECT_NEAR(one.usedRect().height() * 2, two.usedRect().height(), 0.01);
    }
}

TEST(LaidOutText, sidesAreAsWrittenAlsoFromRightToLeft)
{
    TextLayer layer = layerOf(CopySlot::title, u"مرحبا"_s);
    const auto left = [&](LayerTextAlignment alignment) {
        layer.alignment = alignment;
        return LaidOutText(styledText(layer, 40), 400).usedRect().left();
    };
    EXPECT_NEAR(left(LayerTextAlignment::leading), 0, 1);
    EXPECT_GT(left(LayerTextAlignment::center), 50);
    EXPECT_GT(left(LayerTextAlignment::trailing), 150);
}

TEST(LaidOutText, aTextRunsInTheDirectionOfItsOwnLetters)
{
    const auto drawn = [](const QString& text) {
        QImage image(300, 60, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::black);
        QPainter painter(&image);
        painter.setPen(Qt::white);
        LaidOutText(styledText(layerOf(CopySlot::title, text), 40), 300).draw(painter, {});
        return image;
    };
    // A direction mark at the end would move the "!" if it were not already on the correct side.
    EXPECT_EQ(drawn(u"שלום!"_s), drawn(u"שלום!\u200f"_s));
    EXPECT_EQ(drawn(u"Hola!"_s), drawn(u"Hola!\u200e"_s));
}

TEST(LaidOutText, emojiAreInColourAndSequencesWhole)
{
    if (!QFontDatabase::hasFamily(u"Noto Color Emoji"_s))
        GTEST_SKIP() << "the emoji font is not installed";
    for (const QString& emoji :
         {u"😀"_s, u"⭐"_s, u"❤️"_s, u"☀️"_s, u"🇪🇸"_s, u"👩‍🍳"_s, u"1️⃣"_s,
          u"🏳️‍🌈"_s, u"❤️‍🔥"_s, u"👩‍❤️‍👨"_s, u"🕵️‍♂️"_s,
          u"☝🏽"_s}) {
        QImage image(120, 120, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::black);
        QPainter painter(&image);
        painter.setPen(Qt::white);
        const LaidOutText text(styledText(layerOf(CopySlot::title, emoji), 60), 120);
        text.draw(painter, {});
        painter.end();
        EXPECT_LT(text.measuredRect().width(), 1.2 * 60) << qPrintable(emoji);
        int coloured = 0;
        for (int y = 0; y < 120; ++y) {
            for (int x = 0; x < 120; ++x)
                coloured += QColor(image.pixel(x, y)).saturation() > 60 &&
                            QColor(image.pixel(x, y)).value() > 90;
        }
        EXPECT_GT(coloured, 200) << qPrintable(emoji);
    }
}
