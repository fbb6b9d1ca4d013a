#include "app/account/UserAccountButton.h"
#include "app/controls/ChooserFolder.h"
#include "app/controls/CostButton.h"
#include "app/export/ExportButtons.h"
#include "app/window/TopBar.h"
#include "platform/PreferencesStore.h"
#include "tests/app/Events.h"

#include <QDir>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(ExportButtons, nameWhatTheyDoInAWidthThatDoesNotDependOnIt)
{
    ExportButtons buttons;
    buttons.setOffer({.images = 500});
    for (const auto& [wording, all, four] :
         {std::tuple(ExportButtons::Wording::whole, u"Exportar todo"_s, u"Exportar 4"_s),
          std::tuple(ExportButtons::Wording::brief, u"Todo"_s, u"Las 4"_s)}) {
        buttons.setWording(wording);
        const QSize size = buttons.sizeHint();
        const auto shown = [&](qsizetype selected, int credits) {
            buttons.setOffer({.images = 500, .selected = selected, .several = {credits, 100}});
            EXPECT_EQ(buttons.sizeHint(), size) << selected;
            return buttons.several()->text();
        };
        EXPECT_EQ(shown(0, 25000), all);
        EXPECT_EQ(shown(1, 0), all);
        EXPECT_EQ(shown(4, 200), four);
        EXPECT_EQ(buttons.several()->accessibleName(), u"Exportar 4"_s);
        shown(500, 25000);
    }
    int wider = 0;
    QObject::connect(&buttons, &ExportButtons::widthChanged, [&] { ++wider; });
    buttons.setOffer({.images = 5000, .several = {250000, 0}});
    EXPECT_EQ(wider, 1);
}

TEST(ExportButtons, aShortBalanceIsToldAndDisablesNothing)
{
    ExportButtons buttons;
    buttons.setKeys(u"Ctrl+E"_s, {});
    const auto told = [&](const ExportOffer& offer) {
        buttons.setOffer(offer);
        EXPECT_EQ(buttons.current()->isEnabled(), buttons.several()->isEnabled());
        return buttons.current()->isEnabled() ? buttons.current()->accessibleDescription()
                                              : buttons.current()->toolTip();
    };
    EXPECT_EQ(told({.images = 2, .current = {50, 50}}), u"cuesta 50 créditos"_s);
    EXPECT_EQ(buttons.current()->toolTip(), u"Exportar actual · Ctrl+E"_s);
    EXPECT_EQ(told({.images = 2, .current = {0, 0}}), u"cuesta 0 créditos"_s);
    EXPECT_EQ(told({.images = 2}), u"se está calculando el coste"_s);
    EXPECT_EQ(told({.images = 2, .current = {50, 40}}), u"cuesta 50 créditos y tienes 40"_s);
    EXPECT_TRUE(buttons.current()->toolTip().endsWith(u"\nCuesta 50 créditos y tienes 40"_s));
    EXPECT_EQ(told({}), u"Importa una imagen para exportarla o publicarla."_s);
    EXPECT_EQ(told({.images = 2, .isRunning = true}), u"Espera a que termine la exportación."_s);
}

TEST(CostChip, theCoinStaysWhereItIsWhateverTheCost)
{
    CostChip chip(5);
    const auto coinAt = [&chip](std::optional<int> credits) {
        chip.setCost({credits, 100, 200});
        chip.resize(chip.sizeHint());
        const QImage image = chip.grab().toImage();
        for (int x = 0; x < image.width(); ++x) {
            for (int y = 0; y < image.height(); ++y) {
                if (image.pixel(x, y) != image.pixel(0, 0))
                    return x;
            }
        }
        return -1;
    };
    const int full = coinAt(200);
    EXPECT_GT(full, 0);
    for (const auto& credits : {std::optional(0), std::optional(50), std::optional<int>()})
        EXPECT_EQ(coinAt(credits), full) << credits.value_or(-1);
}

TEST(ChooserFolder, beginsInOneThatIsThere)
{
    const QTemporaryDir home;
    const auto restore = qScopeGuard([before = qgetenv("HOME")] { qputenv("HOME", before); });
    qputenv("HOME", home.path().toUtf8());
    PreferencesStore preferences(home.filePath(u"p.sqlite"_s));
    const auto begin = [&] { return ChooserFolder(preferences, u"folder"_s).begin(); };
    const QString usual = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    ASSERT_TRUE(usual.startsWith(home.path()));
    EXPECT_EQ(begin(), home.path());
    ASSERT_TRUE(QDir().mkpath(usual));
    EXPECT_EQ(begin(), usual);
    const QString last = home.filePath(u"last"_s);
    ASSERT_TRUE(QDir().mkpath(last));
    ChooserFolder(preferences, u"folder"_s).remember(last);
    EXPECT_EQ(begin(), last);
    ASSERT_TRUE(QDir().rmdir(last));
    EXPECT_EQ(begin(), usual);
}

TEST(TopBar, everythingHasItsPlaceFromTheNarrowestWindowOn)
{
    TopBar bar({{u"9:16"_s, {}, {}, {}},
                {u"16:9"_s, {}, {}, {}},
                {u"4:5"_s, {}, {}, {}},
                {u"1:1"_s, {}, {}, {}}});
    bar.account()->setAccount(u"Wilhelmina-Maximiliana Montgomery"_s, 10'000'000);
    bar.exports()->setOffer({.images = 5000, .several = {250'000, 0}});
    bar.show();
    for (const int width : {1200, 1280, 1399, 1400, 1440, 1920}) {
        bar.resize(width, 56);
        settle();
        int end = 0;
        for (const QWidget* stop : bar.focusOrder()) {
            const int left = stop->mapTo(&bar, QPoint()).x();
            EXPECT_GE(left, end) << width << stop->accessibleName().toStdString();
            end = left + stop->width();
        }
        EXPECT_LE(end, width);
        EXPECT_EQ(bar.exports()->current()->text(),
                  width < 1400 ? u"Actual"_s : u"Exportar actual"_s);
    }
}
