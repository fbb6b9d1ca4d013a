#include "app/desktop/RecentPlaces.h"

#include "platform/PreferencesStore.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <QtTest/QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class RecentPlacesTest : public ::testing::Test {
protected:
    QUrl folder(const QString& name)
    {
        EXPECT_TRUE(QDir(m_folder.path()).mkpath(name));
        return QUrl::fromLocalFile(m_folder.filePath(name));
    }
    QUrl file(const QString& name)
    {
        QFile made(m_folder.filePath(name));
        EXPECT_TRUE(made.open(QIODevice::WriteOnly));
        return QUrl::fromLocalFile(made.fileName());
    }
    static QStringList names(const RecentPlaces& recent)
    {
        QStringList names;
        for (const RecentPlace& place : recent.places())
            names.append(place.name() + (place.isFolder ? u"/"_s : QString()));
        return names;
    }

    QTemporaryDir m_folder;
    PreferencesStore preferences{m_folder.filePath(u"p.sqlite"_s)};
};

}    // namespace

TEST_F(RecentPlacesTest, theLastFiveAreKeptOnceEachAlsoForTheNextStart)
{
    {
        RecentPlaces recent(preferences);
        recent.remember({folder(u"uno"_s)});
        recent.remember({file(u"foto.jpg"_s)});
        recent.remember({file(u"uno/a.jpg"_s), file(u"uno/b.jpg"_s)});
        EXPECT_EQ(names(recent), (QStringList{u"uno/"_s, u"foto.jpg"_s}));
        for (const char* name : {"tres", "cuatro", "cinco"})
            recent.remember({folder(QString::fromLatin1(name))});
        recent.remember({folder(u"seis"_s), folder(u"siete"_s)});
    }
    preferences.setValue(u"unrelated"_s, "x");
    EXPECT_EQ(names(RecentPlaces(preferences)),
              (QStringList{u"seis/"_s, u"siete/"_s, u"cinco/"_s, u"cuatro/"_s, u"tres/"_s}));
    preferences.setValue(u"moltiva.recentPlaces"_s, R"([{"path":7}, "x", {"path":"/a b"}])");
    EXPECT_EQ(names(RecentPlaces(preferences)), QStringList{u"a b"_s});
    preferences.setValue(u"moltiva.recentPlaces"_s, "damaged");
    EXPECT_EQ(names(RecentPlaces(preferences)), QStringList());
}

TEST_F(RecentPlacesTest, whatIsGoneIsMarkedUntilItIsBack)
{
    RecentPlaces recent(preferences);
    const QUrl here = folder(u"queda"_s), gone = folder(u"se va"_s);
    recent.remember({here});
    recent.remember({gone});
    const auto areLost = [&](bool first, bool second) {
        recent.look();
        return QTest::qWaitFor([&] {
            return recent.places().value(0).isLost == first &&
                   recent.places().value(1).isLost == second;
        });
    };
    recent.look();    // what it has found may be outdated by the next call
    ASSERT_TRUE(QDir().rmdir(gone.toLocalFile()));
    EXPECT_TRUE(areLost(true, false));
    folder(u"se va"_s);
    EXPECT_TRUE(areLost(false, false));
}
