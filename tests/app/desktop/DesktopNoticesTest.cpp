#include "app/desktop/DesktopNotices.h"

#include "platform/PreferencesStore.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"
#include "tests/app/FakeDesktop.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(DesktopNotices, longWorkThatEndsBehindOtherWindowsIsTold)
{
    const QTemporaryDir folder;
    PreferencesStore preferences(folder.filePath(u"p.sqlite"_s));
    StudioSession session(std::make_shared<PhotoCache>(folder.filePath(u"cache"_s)), preferences);
    FakeDesktop desktop;
    bool isInFront = false;
    std::chrono::steady_clock::time_point now;
    DesktopNotices notices(
        desktop, [&] { return isInFront; }, [&] { return now; });
    notices.follow(session);
    const auto work = [&](Activity::Kind kind, std::chrono::seconds time) {
        session.setActivity({.kind = kind});
        now += time / 2;
        session.setActivity({.kind = kind, .done = 1, .total = 2});
        now += time - time / 2;
        session.endActivity(kind);
    };
    using std::chrono::seconds;
    struct Case {
        const char* label;
        Activity::Kind kind;
        int time;    // seconds
        bool isInFront;
        QString told;
    };
    for (const Case& c :
         {Case{"export", Activity::Kind::exporting, 11, false, u"La exportación ha terminado"_s},
          Case{"generation", Activity::Kind::generating, 40, false,
               u"La generación de textos ha terminado"_s},
          Case{"publication", Activity::Kind::publishing, 11, false,
               u"La publicación ha terminado"_s},
          Case{"short", Activity::Kind::exporting, 10, false, {}},
          Case{"seen", Activity::Kind::exporting, 60, true, {}},
          Case{"import", Activity::Kind::importing, 60, false, {}}}) {
        desktop.notices.clear();
        isInFront = c.isInFront;
        work(c.kind, seconds(c.time));
        const QString told = desktop.notices.isEmpty() ? QString() : desktop.notices.first().title;
        EXPECT_EQ(told, c.told) << c.label;
        EXPECT_LE(desktop.notices.size(), 1) << c.label;
    }
}
