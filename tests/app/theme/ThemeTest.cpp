#include "app/theme/Theme.h"
#include "app/controls/fields/Switch.h"
#include "app/theme/Icons.h"

#include <QMenu>
#include <QWidget>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

double luminance(const QColor& color)
{
    const auto linear = [](double c) {
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

double contrast(const QColor& a, const QColor& b)
{
    const auto [dark, light] = std::minmax({luminance(a), luminance(b)});
    return (light + 0.05) / (dark + 0.05);
}

}    // namespace

TEST(Theme, everyTextIsReadableOnEveryGround)
{
    for (const Theme* theme : {&darkTheme(), &lightTheme()}) {
        for (const QColor& ground :
             {theme->bg, theme->panel, theme->card, theme->control, theme->hover, theme->elev}) {
            for (const QColor& text : {theme->text, theme->text2, theme->text3, theme->accentText,
                                       theme->ok, theme->warn, theme->err})
                EXPECT_GE(contrast(text, ground), 4.5)
                    << qPrintable(text.name()) << " on " << qPrintable(ground.name());
            EXPECT_GE(contrast(theme->accentLine, ground), 3.0)
                << "focus and selection on " << qPrintable(ground.name());
        }
        EXPECT_GE(contrast(Qt::white, theme->accent), 4.5);
        EXPECT_GE(contrast(Qt::white, theme->accentHover), 4.5);
        EXPECT_GE(contrast(theme->accentText, theme->accentSoft), 4.5);
        EXPECT_GE(contrast(theme->text2, theme->seg), 4.5);
        EXPECT_GE(contrast(theme->accentText, theme->seg), 3.0) << "below the chosen segment";
    }
}

TEST(Theme, aSwitchIsSeenOnAndOff)
{
    Switch box(u"Caja"_s);
    for (const Theme* theme : {&darkTheme(), &lightTheme()}) {
        box.setPalette(paletteOf(*theme));
        for (const bool on : {false, true}) {
            box.setChecked(on);
            const QImage picture = box.grab().toImage();
            const QColor left = picture.pixelColor(9, 12), right = picture.pixelColor(23, 12);
            EXPECT_EQ(on ? right : left, QColor(Qt::white));
            const QColor track = on ? left : right;
            EXPECT_GE(contrast(track, Qt::white), 3.0) << on;
            for (const QColor& ground : {theme->panel, theme->card})
                EXPECT_GE(contrast(track, ground), 3.0) << on << qPrintable(ground.name());
        }
    }
}

TEST(Theme, aWindowOfAnotherThemeKeepsItWithItsChildren)
{
    QWidget window;
    QWidget child(&window);
    EXPECT_EQ(&themeOf(&child), &darkTheme());
    window.setPalette(paletteOf(lightTheme()));
    EXPECT_EQ(&themeOf(&child), &lightTheme());
}

TEST(Theme, aMenuHasNoCornersToBeBlack)
{
    QMenu menu;
    menu.addAction(u"Uno"_s);
    menu.popup({});
    const QRegion seen = menu.mask();
    EXPECT_FALSE(seen.contains(QPoint(0, 0)));
    EXPECT_FALSE(seen.contains(menu.rect().bottomRight()));
    EXPECT_TRUE(seen.contains(QPoint(menu.width() / 2, 0)));
}

TEST(Icons, everyIconIsInTheProgramAndTakesItsColour)
{
    for (const IconRow& icon : icons) {
        if (icon.icon == Icon::none)
            continue;
        for (const int size : {14, 20}) {
            const QPixmap pixmap = iconPixmap(icon.icon, size, Qt::red, 2);
            const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
            ASSERT_EQ(image.size(), QSize(2 * size, 2 * size));
            int strongest = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const QColor pixel = image.pixelColor(x, y);
                    strongest = std::max(strongest, pixel.alpha());
                    if (pixel.alpha() > 200) {
                        ASSERT_GT(pixel.red(), 240) << "black would be currentColor unreplaced";
                    }
                }
            }
            EXPECT_GT(strongest, 200) << icon.file.toString().toStdString() << " is empty";
        }
    }
}
