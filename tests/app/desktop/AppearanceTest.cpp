#include "app/desktop/Appearance.h"

#include "app/theme/StudioStyle.h"
#include "app/theme/Theme.h"
#include "platform/PreferencesStore.h"
#include "tests/app/FakeDesktop.h"

#include <QApplication>
#include <QStyle>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

bool isProgramLight()
{
    return &themeOf(QApplication::palette()) == &lightTheme();
}

int hoverTime()
{
    return QApplication::style()->styleHint(QStyle::SH_Widget_Animation_Duration);
}

class AppearanceTest : public ::testing::Test {
protected:
    // Leaves the program as the other tests expect it.
    ~AppearanceTest() override
    {
        applyTheme(darkTheme());
        setMotion(Motion::reduced);
    }

    QTemporaryDir m_folder;
    PreferencesStore preferences{m_folder.filePath(u"p.sqlite"_s)};
    FakeDesktop desktop;
};

}    // namespace

TEST_F(AppearanceTest, isDarkUntilChosenAndFollowsTheDesktopOnlyIfWanted)
{
    {
        Appearance appearance(preferences);
        EXPECT_EQ(appearance.choice(), ThemeChoice::dark);
        desktop.prefer({.scheme = ColorScheme::light});
        appearance.follow(desktop);
        EXPECT_FALSE(isProgramLight()) << "nobody chose the desktop's";
        appearance.choose(ThemeChoice::system);
        EXPECT_TRUE(isProgramLight());
        desktop.prefer({.scheme = ColorScheme::dark});
        EXPECT_FALSE(isProgramLight());
        EXPECT_TRUE(appearance.isSchemeKnown());
        desktop.prefer({.scheme = ColorScheme::light});
    }
    Appearance next(preferences);
    EXPECT_EQ(next.choice(), ThemeChoice::system);
    EXPECT_TRUE(isProgramLight()) << "as the desktop was last";
    EXPECT_TRUE(next.isSchemeKnown());
    FakeDesktop late;
    late.prefer({.scheme = ColorScheme::unknown});
    next.follow(late);
    EXPECT_TRUE(isProgramLight()) << "until the desktop tells";
    late.prefer({.scheme = ColorScheme::noPreference});
    EXPECT_FALSE(isProgramLight()) << "the preference was given up while the program was closed";
    next.follow(desktop);
    EXPECT_TRUE(isProgramLight());
    desktop.prefer({});
    EXPECT_FALSE(isProgramLight()) << "a desktop that prefers nothing";
    EXPECT_FALSE(Appearance(preferences).isSchemeKnown());
    EXPECT_FALSE(isProgramLight()) << "also at the next start";
    desktop.prefer({.scheme = ColorScheme::light});
    EXPECT_TRUE(isProgramLight());
    next.choose(ThemeChoice::dark);
    EXPECT_FALSE(isProgramLight());
}

TEST_F(AppearanceTest, animationsEndWhereTheDesktopWantsNone)
{
    Appearance appearance(preferences);
    appearance.follow(desktop);
    EXPECT_GT(hoverTime(), 0);
    desktop.prefer({.reducesMotion = true});
    EXPECT_EQ(hoverTime(), 0);
}
