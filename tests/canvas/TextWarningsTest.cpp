#include "canvas/TextWarnings.h"

#include "canvas/WarningSentences.h"

#include <QFontDatabase>
#include <QPainter>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize warningCanvas(400, 400);

// An item with `layer` over a photo as large as the canvas.
PublicationItem itemWith(const TextLayer& layer)
{
    PublicationItem item = PublicationItem::make(
        QUrl(), {.path = {}, .size = warningCanvas, .reducible = false, .digest = {}});
    item.layers = {layer};
    return item;
}

TextLayer smallText(QRgb color = 0xFFFFFFFF)
{
    TextLayer layer(QUuid::createUuid(), CopySlot::subtitle, u"mmmm mmmm mmmm"_s, true,
                    {0.1, 0.3, 0.8, 0.4});
    layer.hasBox = false;
    layer.fontScale = 0.5;
    layer.foreground = CodableColor(QColor::fromRgba(color));
    return layer;
}

QImage ground(QRgb color)
{
    QImage photo(warningCanvas, QImage::Format_RGB32);
    photo.fill(color);
    return photo;
}

QImage ground(QRgb color, const QRect& part, QRgb other)
{
    QImage photo = ground(color);
    QPainter(&photo).fillRect(part, QColor(other));
    return photo;
}

QList<TextWarning> warningsOf(const PublicationItem& item, const QImage& photo)
{
    return judgedItem(layOut(item, warningCanvas, warningCanvas), warningCanvas / 4, photo)
        .warnings;
}

}    // namespace

TEST(TextWarnings, contrastIsThatOfWhatLiesUnderTheLetters)
{
    // The contrast of grey with white is 3.03.
    constexpr QRgb white = 0xFFFFFF, black = 0, grey = 0x949494;
    TextLayer boxed = smallText();
    boxed.hasBox = true;
    boxed.background = codableBlack;
    boxed.backgroundOpacity = 1;
    TextLayer large = smallText(), bold = smallText();
    large.fontScale = 1.2;
    bold.slot = CopySlot::title;
    const struct {
        const char* name;
        TextLayer layer;
        QImage photo;
        std::optional<double> contrast;
    } cases[] = {
        {"white on white", smallText(), ground(white), 1.0},
        {"white on black", smallText(), ground(black), std::nullopt},
        {"half of it on white", smallText(), ground(black, {0, 0, 200, 400}, white), 1.0},
        {"a spot of white", smallText(), ground(black, {150, 0, 12, 400}, white), std::nullopt},
        {"white only beside it", smallText(), ground(white, {0, 180, 400, 40}, black),
         std::nullopt},
        {"its own box", boxed, ground(white), std::nullopt},
        {"hardly opaque", smallText(0x20000000), ground(white), 1.3},
        {"just too little", smallText(), ground(grey), 3.0},
        {"enough for large type", large, ground(grey), std::nullopt},
        {"enough for bold type of 20", bold, ground(grey), std::nullopt},
    };
    for (const auto& c : cases) {
        const auto warnings = warningsOf(itemWith(c.layer), c.photo);
        ASSERT_EQ(warnings.size(), c.contrast ? 1 : 0) << c.name;
        if (c.contrast) {
            EXPECT_EQ(warnings[0].contrast, c.contrast) << c.name;
            EXPECT_EQ(warnings[0].leastContrast, 4.5) << c.name;
        }
    }
}

TEST(TextWarnings, emojiHaveTheirOwnColours)
{
    if (!QFontDatabase::hasFamily(u"Noto Color Emoji"_s))
        GTEST_SKIP() << "the emoji font is not installed";
    const struct {
        QString text;
        QRect dark;    // the dark part of a white photo
        bool warned;
    } cases[] = {
        {u"❤️🎉"_s, {}, false},
        {u" 🎉 ❤️ \n🎉"_s, {}, false},
        {u"🎉🎉🎉 mm"_s, {}, true},
        {u"mm 🎉🎉🎉"_s, {200, 0, 200, 400}, true},
        {u"🎉🎉🎉🎉 mm"_s, {200, 0, 200, 400}, false},
        {u"אב 🎉🎉🎉🎉 אב"_s, {200, 0, 200, 400}, true},
    };
    for (const auto& c : cases) {
        TextLayer layer = smallText();
        layer.text = c.text;
        EXPECT_EQ(warningsOf(itemWith(layer), ground(0xFFFFFF, c.dark, 0)).size(), c.warned)
            << qPrintable(c.text);
    }
}

TEST(TextWarnings, whatIsNotSeenIsNotJudged)
{
    TextLayer hidden = smallText(), blank = smallText(), outside = smallText();
    hidden.isVisible = false;
    blank.text = u" \n "_s;
    outside.frame.x = 1.5;
    for (const TextLayer& layer : {hidden, blank, outside})
        EXPECT_TRUE(warningsOf(itemWith(layer), ground(0xFFFFFF)).isEmpty());
    EXPECT_TRUE(warningsOf(itemWith(smallText(0xFF000000)), QImage()).isEmpty())
        << "the photo is missing";
}

TEST(TextWarnings, aTextThatDoesNotFitAtItsSmallestIsToldAlsoWhenItsLinesAreTakenOver)
{
    PublicationItem item = itemWith(smallText());
    item.layers[0].text = u"palabra "_s.repeated(400);
    const ItemLayout first = layOut(item, warningCanvas, warningCanvas);
    EXPECT_TRUE(first.texts[0].overflows);
    item.layers[0].frame.y = 0.2;
    EXPECT_TRUE(layOut(item, warningCanvas, warningCanvas, first).texts[0].overflows);
    const auto warnings = warningsOf(item, ground(0));
    ASSERT_EQ(warnings.size(), 1);
    EXPECT_TRUE(warnings[0].overflows);
    item.layers[0].text = u"palabra"_s;
    EXPECT_FALSE(layOut(item, warningCanvas, warningCanvas, first).texts[0].overflows);
    item.layers[0].frame.width = 0.1;
    EXPECT_TRUE(layOut(item, warningCanvas, warningCanvas).texts[0].overflows)
        << "a word wider than its box";
}

TEST(TextWarnings, aCharacterThatNoFontHasIsTold)
{
    PublicationItem item = itemWith(smallText());
    const auto lacksGlyphs = [&](const QString& text) {
        item.layers[0].text = text;
        const auto warnings = warningsOf(item, ground(0));
        return !warnings.isEmpty() && warnings[0].lacksGlyphs;
    };
    EXPECT_TRUE(lacksGlyphs(u"mmmm \U000EFFFD"_s));
    for (const QString& text : {u"mmmm 🎉 1️⃣ ❤️ ☝🏽 🏳️‍🌈 ¡ñandú!"_s,
                                u"un\u00adi\u200bd\u200do\ufe0f\tdos\r\ntres\u2060"_s})
        EXPECT_FALSE(lacksGlyphs(text)) << qPrintable(text);
}

TEST(TextWarnings, aTextOfAStoryMustStayClearOfTheNetworksControls)
{
    struct Case {
        SocialFormat format;
        double y;    // of the box
        bool isOutside;
    };
    const QList<Case> cases{
        {SocialFormat::storyReel, 0.02, true}, {SocialFormat::storyReel, 0.14, false},
        {SocialFormat::storyReel, 0.7, false}, {SocialFormat::storyReel, 0.84, true},
        {SocialFormat::square, 0.02, false},   {SocialFormat::carouselPortrait, 0.84, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.y);
        TextLayer layer = smallText();
        layer.hasBox = true;
        layer.backgroundOpacity = 1;
        layer.frame = {0.1, c.y, 0.8, 0.12};
        PublicationItem item = itemWith(layer);
        const ItemLayout layout = layOut(item, exportSize(c.format), designSize(c.format));
        const auto warnings =
            judgedItem(layout, exportSize(c.format).toSize() / 8, ground(0)).warnings;
        EXPECT_EQ(std::ranges::any_of(warnings, &TextWarning::isOutsideSafeZone), c.isOutside);
        EXPECT_EQ(warnings.isEmpty(), !c.isOutside);
        EXPECT_TRUE(warningSentences(warnings).isEmpty()) << "only told when publishing";
    }
}

TEST(TextWarnings, judgingLeavesNoTraceInThePicture)
{
    PublicationItem item = PublicationItem::make(
        QUrl(), {.path = {}, .size = warningCanvas, .reducible = false, .digest = {}});
    const ItemLayout layout = layOut(item, warningCanvas, warningCanvas);
    const JudgedPicture judged = judgedItem(layout, warningCanvas, ground(0xFFFFFF));
    EXPECT_FALSE(judged.warnings.isEmpty());
    EXPECT_EQ(judged.picture, paintedItem(layout, warningCanvas, ground(0xFFFFFF)));
}
