#include "app/controls/Button.h"
#include "app/controls/Notice.h"
#include "app/desktop/CheckForUpdatesView.h"
#include "app/settings/UpdatesBinding.h"
#include "app/settings/UpdatesDetailPanel.h"
#include "platform/PreferencesStore.h"
#include "tests/support/ScriptedAccount.h"

#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class UpdateControllerTest : public testing::Test {
protected:
    UpdateControllerTest()
    {
        QObject::connect(&updates, &UpdateController::told,
                         [this](const QString& sentence, bool) { told.append(sentence); });
    }
    void serve(const QByteArray& keys)
    {
        account.answer("GET /api/publicaciones/config",
                       R"({"enabled":true,"providerLabel":"p","costCredits":10)" + keys + "}");
    }
    QString answer()
    {
        CheckForUpdatesView{updates}.press();
        EXPECT_FALSE(CheckForUpdatesView{updates}.isEnabled());
        updates.checkForUpdates();    // nothing is asked twice at once
        EXPECT_TRUE(isDone());
        EXPECT_EQ(told.size(), 1);
        return told.isEmpty() ? QString() : told.takeLast();
    }
    bool isDone()
    {
        return QTest::qWaitFor([this] { return !updates.isChecking(); }, 10000);
    }
    qsizetype asked() const { return account.log().count("GET /api/publicaciones/config"); }

    QTemporaryDir folder;
    PreferencesStore preferences{folder.filePath(u"p.sqlite"_s)};
    ScriptedAccount account{preferences, Scripted::signedOut};
    QDateTime now = QDateTime::fromString(u"2026-03-01T10:00:00Z"_s, Qt::ISODate);
    UpdateController updates{account.session(), preferences, [this] { return now; }};
    QStringList told;
};

}    // namespace

TEST_F(UpdateControllerTest, tellsWhatIsKnownAndOffersOnlyASafeDownload)
{
    serve(R"(,"latestMacVersion":"99.0","macDownloadURL":"https://e.es/mac.dmg")");
    EXPECT_TRUE(answer().startsWith(u"No se sabe si hay una versión nueva"_s));
    EXPECT_EQ(updates.offered(), OfferedVersion());

    serve(R"(,"latestLinuxVersion":"99.0","linuxDownloadURL":"https://e.es/m.deb")");
    EXPECT_TRUE(answer().startsWith(u"Hay una versión nueva de Moltiva, la 99.0."_s));
    EXPECT_EQ(updates.offered().download, QUrl(u"https://e.es/m.deb"_s));

    for (const char* address : {"http://e.es/m.deb", "file:///m.deb", "https:", "x"}) {
        serve(R"(,"latestLinuxVersion":"99.0","linuxDownloadURL":")" + QByteArray(address) + '"');
        EXPECT_TRUE(answer().endsWith(u"todavía sin descarga."_s)) << address;
        EXPECT_FALSE(updates.offered().download) << address;
    }
    serve(R"(,"latestLinuxVersion":"0.0.1")");
    EXPECT_EQ(answer(), u"Moltiva está al día."_s);

    account.answer("GET /api/publicaciones/config", R"({"error":"database_unavailable"})", 503);
    EXPECT_EQ(answer(), u"No se ha podido saber si hay una versión nueva. "
                        "La base de datos no está disponible."_s);
    EXPECT_EQ(updates.offered(), OfferedVersion());
}

TEST_F(UpdateControllerTest, anotherQuestionUnderWayTakesNothingFromTheAnswer)
{
    serve(R"(,"latestLinuxVersion":"99.0")");
    account.hold("GET /api/publicaciones/config");
    updates.checkForUpdates();
    account.session().refresh();    // asks for the same record
    EXPECT_TRUE(QTest::qWaitFor([this] { return asked() == 2; }, 10000));
    account.release();
    EXPECT_TRUE(isDone());
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told.takeLast().startsWith(u"Hay una versión nueva"_s));

    account.answer("GET /api/publicaciones/config", "{}", 500);
    EXPECT_TRUE(answer().startsWith(u"No se ha podido saber"_s));
    EXPECT_EQ(updates.offered(), OfferedVersion());
    serve(R"(,"latestLinuxVersion":"99.0")");
    account.session().refresh();
    EXPECT_TRUE(QTest::qWaitFor([this] { return updates.offered().version == u"99.0"_s; }, 10000));
}

TEST_F(UpdateControllerTest, thePanelAsksAndOpensTheDownload)
{
    UpdatesDetailPanel panel;
    new UpdatesBinding(updates, account.session(), &panel);
    const auto press = [&](const QString& name) {
        for (PushButton* button : panel.findChildren<PushButton*>()) {
            if (button->accessibleName() == name && button->isEnabled()) {
                button->click();
                return isDone();
            }
        }
        return false;
    };
    EXPECT_FALSE(press(u"Descarga directa"_s));
    serve(R"(,"latestLinuxVersion":"99.0","linuxDownloadURL":"https://e.es/m.deb")");
    EXPECT_TRUE(press(u"Buscar actualizaciones"_s));
    EXPECT_TRUE(press(u"Descarga directa"_s));
    EXPECT_TRUE(press(u"Instalar actualización"_s));
    EXPECT_EQ(account.opened(), QList<QUrl>(2, QUrl(u"https://e.es/m.deb"_s)));

    account.answer("GET /api/publicaciones/config", "{}", 500);
    EXPECT_TRUE(press(u"Buscar actualizaciones"_s));
    EXPECT_TRUE(panel.findChild<Notice*>()->text().startsWith(u"No se ha podido saber"_s));
    EXPECT_FALSE(press(u"Descarga directa"_s));
}

TEST_F(UpdateControllerTest, asksOnceADayAndTellsOnlyOfNews)
{
    serve(R"(,"latestLinuxVersion":"0.0.1")");
    const auto pass = [this](qint64 seconds) {
        now = now.addSecs(seconds);
        updates.checkIfDue();
        EXPECT_TRUE(isDone());
        return asked();
    };
    EXPECT_EQ(pass(0), 1);
    EXPECT_EQ(pass(24 * 3600 - 1), 1);
    UpdateController nextStart(account.session(), preferences, [this] { return now; });
    nextStart.checkIfDue();
    EXPECT_FALSE(nextStart.isChecking());
    EXPECT_EQ(pass(1), 2);
    EXPECT_EQ(pass(-3600), 3) << "the clock was put back";
    EXPECT_TRUE(told.isEmpty());
    serve(R"(,"latestLinuxVersion":"99.0")");
    EXPECT_EQ(pass(24 * 3600), 4);
    EXPECT_EQ(told.size(), 1);
    account.drop();
    account.answer("GET /api/publicaciones/config", "{}", 500);
    EXPECT_EQ(pass(24 * 3600), 5);
    EXPECT_EQ(told.size(), 1) << "a failure of the daily question is not told";
}
