#include "app/stage/ViewBar.h"
#include "app/controls/fields/ToggleButton.h"
#include "app/controls/fields/ZoomSlider.h"
#include "tests/app/Events.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(ViewBar, endsAreDisabledWithoutAWrap)
{
    ViewBar bar;
    const auto buttons = bar.findChildren<IconButton*>();
    ASSERT_GE(buttons.size(), 2);
    const auto states = [&] { return std::pair(buttons[0]->isEnabled(), buttons[1]->isEnabled()); };
    EXPECT_EQ(states(), std::pair(false, false));
    bar.setPosition(0, 24);
    EXPECT_EQ(states(), std::pair(false, true));
    const int next = buttons[1]->x();
    bar.setPosition(23, 24);
    EXPECT_EQ(states(), std::pair(true, false));
    EXPECT_EQ(buttons[1]->x(), next) << "numbers of another width moved the button";
}

TEST(ViewBar, nothingCoversAnythingOnTheNarrowestStage)
{
    ViewBar bar;
    bar.setPosition(0, 500);
    bar.show();
    for (const int width : {1600, 700, 600, 520}) {
        bar.resize(width, 52);
        const auto parts = bar.findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
        for (const QWidget* one : parts) {
            for (const QWidget* other : parts)
                EXPECT_TRUE(one == other || !one->isVisible() || !other->isVisible() ||
                            !one->geometry().intersects(other->geometry()))
                    << width;
        }
    }
}

TEST(ViewBar, aZoomBeyondTheBarIsShownAsItsNearest)
{
    ViewBar bar;
    bar.resize(888, 52);
    bar.setPosition(0, 24);
    auto* slider = bar.findChild<ZoomSlider*>();
    QList<std::pair<double, bool>> asked;
    QObject::connect(&bar, &ViewBar::zoomRequested, [&](double zoom, bool held) {
        asked.append({zoom, held});
    });
    for (const double zoom : {0.2, std::nan(""), -1e308, 1.0}) {
        bar.setPlacement({ImageFitMode::fit, zoom, {}});
        EXPECT_EQ(slider->value(), 100) << zoom;
    }
    bar.setPlacement({ImageFitMode::fill, 1e308, {}});
    EXPECT_EQ(slider->value(), 300);
    EXPECT_TRUE(asked.isEmpty()) << "showing is not asking";
    const auto button = [&](const QString& name) {
        for (auto* one : bar.findChildren<IconButton*>()) {
            if (one->accessibleName() == name)
                return one;
        }
        return static_cast<IconButton*>(nullptr);
    };
    EXPECT_FALSE(button(u"Acercar"_qs)->isEnabled());
    bar.setPlacement({ImageFitMode::fill, 1.04, {}});
    button(u"Alejar"_qs)->click();
    button(u"Acercar"_qs)->click();
    EXPECT_EQ(asked, (QList<std::pair<double, bool>>{{1.0, false}, {1.14, false}}));
}

TEST(ViewBar, aDragOfTheSliderEndsWithOneThatRests)
{
    ViewBar bar;
    bar.resize(888, 52);
    bar.setPosition(0, 24);
    bar.show();
    QWidget& slider = *bar.findChild<ZoomSlider*>();
    QList<bool> held;
    QObject::connect(&bar, &ViewBar::zoomRequested, [&](double, bool h) { held.append(h); });
    const auto mouse = [&](QEvent::Type type, int x) {
        QMouseEvent event(type, QPointF(x, 10), slider.mapToGlobal(QPointF(x, 10)),
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(&slider, &event);
    };
    mouse(QEvent::MouseButtonPress, 5);
    mouse(QEvent::MouseButtonRelease, 5);
    EXPECT_TRUE(held.isEmpty()) << "the knob was taken and left where it was";
    mouse(QEvent::MouseButtonPress, 60);
    mouse(QEvent::MouseMove, 80);
    mouse(QEvent::MouseButtonRelease, 80);
    EXPECT_EQ(held, (QList<bool>{true, true, false}));
    EXPECT_FALSE(slider.hasFocus());
    held.clear();
    type(slider, Qt::Key_Right);
    for (const bool repeats : {true, true, false}) {
        const auto kind = repeats ? QEvent::KeyPress : QEvent::KeyRelease;
        QKeyEvent event(kind, Qt::Key_Right, Qt::NoModifier, {}, repeats);
        QApplication::sendEvent(&slider, &event);
    }
    EXPECT_EQ(held, (QList<bool>{false, true, true, false}));
}

TEST(ViewBar, theSafeZoneIsForStories)
{
    ViewBar bar;
    bar.resize(888, 52);
    bar.setPosition(0, 1);
    auto* button = bar.findChild<ToggleButton*>();
    EXPECT_FALSE(button->isEnabled());
    EXPECT_EQ(button->toolTip(), u"Solo en Story / Reel"_qs);
    bar.setFormat(SocialFormat::storyReel);
    EXPECT_TRUE(button->isEnabled());
    EXPECT_EQ(button->toolTip(), QString());
    const int wide = button->width();
    bar.setLabels(Labels::hidden);
    EXPECT_LT(button->width(), wide);
    EXPECT_EQ(button->toolTip(), u"Zona segura"_qs);
}

TEST(ViewBar, nothingOverlapsInANarrowBar)
{
    ViewBar bar;
    bar.setPosition(499, 500);
    bar.show();
    for (const int width : {1200, 836, 756, 640, 560}) {
        bar.setLabels(width < 700 ? Labels::hidden : Labels::shown);
        bar.resize(width, 52);
        QList<QRect> boxes;
        for (const QWidget* child : bar.focusOrder()) {
            if (child->isVisible())
                boxes.append(child->geometry());
        }
        for (int i = 1; i < boxes.size(); ++i)
            EXPECT_GT(boxes[i].left(), boxes[i - 1].right()) << width << " " << i;
        EXPECT_LE(boxes.last().right(), width) << width;
    }
}
