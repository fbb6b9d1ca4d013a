#include "app/controls/fields/LineField.h"
#include "app/controls/popovers/ColorPlane.h"
#include "app/controls/popovers/Swatch.h"
#include "app/layers/PhotoColors.h"
#include "tests/app/Events.h"

#include <QImage>
#include <QPainter>

#include <QtTest/QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(PhotoColors, areDistinctTheMostCommonFirstAndAlwaysTheSame)
{
    const QList<QColor> stripes{Qt::red, Qt::green, Qt::blue, Qt::white, Qt::black, Qt::yellow};
    QImage picture(240, 160, QImage::Format_RGB32);
    QPainter painter(&picture);
    int left = 0;
    for (int i = 0; i < stripes.size(); ++i) {
        painter.fillRect(left, 0, 240, 160, stripes[i]);
        left += 70 - 12 * i;
    }
    painter.end();
    const QList<QColor> found = colorsOf(picture);
    ASSERT_EQ(found.size(), 6);
    EXPECT_EQ(found.first(), QColor(Qt::red));
    for (const QColor& color : stripes)
        EXPECT_TRUE(found.contains(color)) << qPrintable(color.name());
    EXPECT_EQ(colorsOf(picture), found);

    picture.fill(Qt::darkCyan);
    EXPECT_EQ(colorsOf(picture), QList<QColor>{Qt::darkCyan});
    EXPECT_EQ(colorsOf(picture.copy(0, 0, 1, 1)), QList<QColor>{Qt::darkCyan});
    EXPECT_TRUE(colorsOf({}).isEmpty());
}

namespace {

struct SwatchTest : ::testing::Test {
    SwatchTest()
    {
        window.resize(600, 600);
        swatch.move(20, 20);
        swatch.setColor(Qt::red);
        swatch.setOffers({{Qt::blue}, {}});
        QObject::connect(&swatch, &Swatch::colorChanged, [this](const QColor& color, Pace pace) {
            changes.append({color.name(), pace});
        });
        QObject::connect(&swatch, &Swatch::colorUsed,
                         [this](const QColor& color) { used.append(color.name()); });
        window.show();
        window.activateWindow();
        settle();
    }
    ColorPopover* open()
    {
        swatch.click();
        return popover();
    }
    ColorPopover* popover()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return window.findChild<ColorPopover*>();
    }

    QWidget window;
    QLineEdit other{&window};
    Swatch swatch{u"Color del texto"_s, &window};
    QList<std::pair<QString, Pace>> changes;
    QStringList used;
};

}    // namespace

TEST_F(SwatchTest, changesLiveAndTellsOnceWhatWasUsed)
{
    other.setFocus();
    auto* shade = open()->findChild<ColorPlane*>();
    EXPECT_TRUE(other.hasFocus()) << "opened by the mouse";
    QTest::mousePress(shade, Qt::LeftButton, {}, {1, 1});
    QTest::mouseRelease(shade, Qt::LeftButton, {}, {1, 1});
    EXPECT_EQ(changes, (QList<std::pair<QString, Pace>>{{u"#ffffff"_s, Pace::held},
                                                        {u"#ffffff"_s, Pace::once}}));
    auto* hex = popover()->findChild<LineField*>();
    EXPECT_EQ(hex->text(), u"#FFFFFF"_s);
    hex->setFocus();
    hex->setText(u"10221a"_s);
    type(*hex, Qt::Key_Return);
    EXPECT_EQ(changes.last(), std::pair(u"#10221a"_s, Pace::once));
    EXPECT_TRUE(hex->hasFocus());
    hex->setText(u"#12"_s);
    type(*hex, Qt::Key_Return);
    EXPECT_EQ(hex->text(), u"#10221A"_s) << "what is no colour is taken back";
    EXPECT_TRUE(used.isEmpty());
    type(other, Qt::Key_Escape);
    EXPECT_EQ(popover(), nullptr);
    EXPECT_TRUE(other.hasFocus());
    EXPECT_EQ(used, QStringList{u"#10221a"_s});
}

TEST_F(SwatchTest, goesAwayWithAPressElsewhereOrWithItsOwner)
{
    open();
    press(*popover(), popover()->rect().center());
    EXPECT_NE(popover(), nullptr);
    press(other, {5, 5});
    EXPECT_EQ(popover(), nullptr);
    open();
    swatch.setEnabled(false);
    EXPECT_EQ(popover(), nullptr);
    swatch.setEnabled(true);
    open();
    swatch.click();
    EXPECT_EQ(popover(), nullptr) << "the second press opened another";
    EXPECT_TRUE(used.isEmpty()) << "nothing was chosen";
}

TEST_F(SwatchTest, fromTheKeyboardTheArrowsMoveTheColourAndTabGoesRound)
{
    swatch.setFocus(Qt::TabFocusReason);
    auto* shade = open()->findChild<ColorPlane*>();
    ASSERT_TRUE(shade->hasFocus());
    QTest::keyClick(shade, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(changes.last(), std::pair(u"#e60000"_s, Pace::once));
    for (int stop = 0; stop < 4; ++stop) {
        EXPECT_TRUE(popover()->isAncestorOf(window.focusWidget()));
        QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
    }
    EXPECT_TRUE(shade->hasFocus());
    type(*shade, Qt::Key_Escape);
    EXPECT_TRUE(swatch.hasFocus());
}
