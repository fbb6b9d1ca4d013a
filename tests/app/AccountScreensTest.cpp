#include "app/AccountChecks.h"
#include "app/AccountDetailPanel.h"
#include "app/AccountPanelView.h"
#include "app/AccountSettingsWindow.h"
#include "app/AccountTexts.h"
#include "app/AppVersion.h"
#include "app/AuthGateView.h"
#include "app/CreditAmounts.h"
#include "app/CreditsDetailPanel.h"
#include "app/CustomAmount.h"
#include "app/LoginView.h"
#include "app/MainWindow.h"
#include "app/StudioMenu.h"
#include "app/UserAccountButton.h"
#include "app/controls/Button.h"
#include "app/controls/FormField.h"
#include "app/controls/Notice.h"
#include "platform/PhotoCache.h"
#include "platform/PreferencesStore.h"
#include "studio/StudioSession.h"
#include "tests/app/Events.h"
#include "tools/ScriptedAccount.h"

#include <QAction>
#include <QClipboard>
#include <QTemporaryDir>

#include <QtTest/QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// A window over a scripted service, nobody signed in.
class AccountScreensTest : public ::testing::Test {
protected:
    bool isAt(Gate state)
    {
        return QTest::qWaitFor([this, state] { return window.gate()->state() == state; });
    }
    bool isDone()
    {
        return QTest::qWaitFor([this] { return !account.session().isWorking(); });
    }
    void show()
    {
        session.restoreWorkspaceIfNeeded();
        window.resize(1280, 800);
        window.show();
        window.activateWindow();
    }
    void signIn()
    {
        account.answer("GET /api/auth/me", ScriptedAccount::summary());
        show();
        ASSERT_TRUE(isAt(Gate::open));
    }
    LoginView* login() { return window.gate()->login(); }
    QString notice() { return login()->findChild<Notice*>()->text(); }
    QUrl photo()
    {
        QImage image(60, 40, QImage::Format_RGB32);
        image.fill(Qt::red);
        EXPECT_TRUE(image.save(folder.filePath(u"f.png"_s)));
        return QUrl::fromLocalFile(folder.filePath(u"f.png"_s));
    }

    QTemporaryDir folder;
    std::shared_ptr<PhotoCache> photos = std::make_shared<PhotoCache>(folder.filePath(u"c"_s));
    PreferencesStore preferences{folder.filePath(u"p.sqlite"_s)};
    StudioSession session{photos, preferences};
    ScriptedAccount account{preferences, Scripted::signedOut};
    MainWindow window{session, account.session(), photos, preferences};
};

}    // namespace

TEST(CreditAmounts, CustomOnesAreWholeBlocksWithinTheLimits)
{
    const QList<std::pair<QString, std::optional<int>>> cases{
        {u"1499"_s, 1000},        {u"1500"_s, 2000},
        {u"50"_s, 1000},          {u"5000000"_s, 1000000},
        {u"999499"_s, 999000},    {u"999500"_s, 1000000},
        {u"-5"_s, 1000},          {u"99999999999999999999999"_s, 1000000},
        {u" 48.700 "_s, 49000},   {u"0"_s, 1000},
        {u""_s, std::nullopt},    {u"-"_s, std::nullopt},
        {u"1e5"_s, std::nullopt}, {u"mil"_s, std::nullopt},
        {u"1,5"_s, std::nullopt}, {u"٣٠٠٠"_s, std::nullopt},
    };
    for (const auto& [typed, credits] : cases)
        EXPECT_EQ(effectiveCredits(typed), credits) << qPrintable(typed);
    EXPECT_EQ(groupedThousands(1000), u"1.000"_s);
    EXPECT_EQ(groupedThousands(100), u"100"_s);
    EXPECT_EQ(groupedThousands(-1234567), u"-1.234.567"_s);
}

TEST(AppVersion, ComparesNumbersNotText)
{
    const QString before = QCoreApplication::applicationVersion();
    QCoreApplication::setApplicationVersion({});
    EXPECT_EQ(AppVersion::current(), u"1.0.1"_s);
    QCoreApplication::setApplicationVersion(u"1.9.2"_s);
    for (const QString& newer : {u"1.10"_s, u" 1.9.2.1 "_s, u"2"_s, u"1.9.10"_s,
                                 u"1.99999999999999999999999"_s, u"1.9.2b"_s})
        EXPECT_TRUE(AppVersion::isRemoteVersionNewer(newer)) << qPrintable(newer);
    for (const QString& notNewer :
         {u""_s, u"  "_s, u"1.9.2"_s, u"1.09.2"_s, u"1.9"_s, u"1.8.9"_s, u"."_s, u"0000"_s})
        EXPECT_FALSE(AppVersion::isRemoteVersionNewer(notNewer)) << qPrintable(notNewer);
    EXPECT_FALSE(AppVersion::isRemoteVersionNewer(std::nullopt));
    QCoreApplication::setApplicationVersion(before);
}

TEST(AccountTexts, WhatTheServiceTellsIsOneBoundedLine)
{
    EXPECT_EQ(shownLine(u"Ana\u202e\n\u0007 María\t"_s.remove(u'\u202e')), u"Ana María"_s);
    EXPECT_LE(shownLine(QString(1'000'000, u'x')).size(), 301);
    EXPECT_EQ(initialsOf(u"Lucía de la Ferrer"_s), u"LF"_s);
    EXPECT_EQ(initialsOf(u"ana maria@casa.es"_s), u"A"_s);
    EXPECT_EQ(initialsOf(u"   "_s), QString());
    EXPECT_EQ(firstNameOf(u" Lucía Ferrer"_s), u"Lucía"_s);
}

TEST_F(AccountScreensTest, TheCheckRunsOnceAndTheStudioWaitsForIt)
{
    account.hold();
    show();
    EXPECT_EQ(window.gate()->state(), Gate::checking);
    window.hide();
    window.show();
    for (const Command command : {Command::importImages, Command::undo, Command::appSettings})
        EXPECT_FALSE(window.menu()->action(command)->isEnabled());
    EXPECT_TRUE(window.menu()->action(Command::quit)->isEnabled());
    window.open({photo()});
    QTest::qWait(100);
    account.release();
    ASSERT_TRUE(isAt(Gate::signedOut));
    EXPECT_EQ(account.log().count("GET /api/auth/me"), 1);
    EXPECT_FALSE(window.menu()->action(Command::importImages)->isEnabled());
    // Neither Tab nor a key of the window leads into what lies behind.
    for (int i = 0; i < 20; ++i) {
        QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
        ASSERT_TRUE(window.gate()->isAncestorOf(window.focusWidget()));
    }
    EXPECT_TRUE(session.batch().items.isEmpty());

    account.answer("POST /api/auth/login", ScriptedAccount::summary());
    login()->email()->edit()->setText(u" lucia@casaliebana.es "_s);
    login()->password()->edit()->setText(u"secreto"_s);
    QTest::keyClick(login()->password()->edit(), Qt::Key_Return);
    ASSERT_TRUE(isAt(Gate::open));
    EXPECT_TRUE(account.log().contains(
        R"(POST /api/auth/login {"email":"lucia@casaliebana.es","password":"secreto"})"));
    EXPECT_TRUE(login()->password()->text().isEmpty());
    EXPECT_TRUE(window.menu()->action(Command::importImages)->isEnabled());
    EXPECT_TRUE(QTest::qWaitFor([this] { return session.batch().items.size() == 1; }));

    account.answer("POST /api/auth/logout", R"({"ok":true})");
    window.menu()->action(Command::signOut)->trigger();
    ASSERT_TRUE(isAt(Gate::signedOut));
    EXPECT_EQ(session.batch().items.size(), 1);
    EXPECT_FALSE(window.menu()->action(Command::undo)->isEnabled());
    EXPECT_EQ(account.log().count("GET /api/auth/me"), 1);
}

TEST_F(AccountScreensTest, WhatIsMissingIsToldBeforeTheServiceIsAsked)
{
    show();
    ASSERT_TRUE(isAt(Gate::signedOut));
    const auto sent = account.log().size();
    const auto send = [this](LoginMode mode) {
        login()->setMode(mode);
        login()->primary(mode)->click();
        return notice();
    };
    EXPECT_EQ(send(LoginMode::recover), u"Escribe tu email."_s);
    login()->email()->edit()->setText(u"a@b.es"_s);
    EXPECT_EQ(send(LoginMode::signIn), u"Escribe tu contraseña."_s);
    EXPECT_EQ(window.focusWidget(), login()->password()->edit());
    QTest::keyClicks(login()->password()->edit(), u"uno"_s);
    EXPECT_FALSE(notice().startsWith(u"Escribe"_s));
    EXPECT_EQ(send(LoginMode::createAccount), u"Las dos contraseñas no coinciden."_s);
    EXPECT_EQ(account.log().size(), sent);

    account.answer("POST /api/auth/login", R"({"error":"invalid_credentials"})", 400);
    account.hold();
    login()->setMode(LoginMode::signIn);
    login()->password()->edit()->setFocus();
    QTest::keyClick(login()->password()->edit(), Qt::Key_Return);
    PushButton* primary = login()->primary(LoginMode::signIn);
    EXPECT_TRUE(primary->isWorking());
    EXPECT_EQ(window.focusWidget(), login()->password()->edit());
    QTest::keyClick(login()->password()->edit(), Qt::Key_Return);
    QTest::keyClick(primary, Qt::Key_Space);
    account.release();
    ASSERT_TRUE(isDone());
    EXPECT_EQ(account.log().size(), sent + 1);
    EXPECT_EQ(notice(), account.session().message());
    EXPECT_EQ(login()->email()->text(), u"a@b.es"_s);
}

TEST_F(AccountScreensTest, ARevealedPasswordStillLeavesByNoCopy)
{
    FormField field(u"Contraseña"_s, FieldKind::password);
    field.resize(300, 60);
    field.show();
    QGuiApplication::clipboard()->setText(u"antes"_s);
    QTest::keyClicks(field.edit(), u"secreto"_s);
    field.edit()->setRevealed(true);
    QTest::keyClick(field.edit(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(field.edit(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(field.text(), u"secreto"_s);
    QTest::keyClick(field.edit(), Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"antes"_s);
    EXPECT_EQ(field.edit()->echoMode(), QLineEdit::Normal);
    field.hide();
    EXPECT_EQ(field.edit()->echoMode(), QLineEdit::Password);
}

TEST_F(AccountScreensTest, ASheetHoldsTheFocusAndGivesItBack)
{
    signIn();
    auto* button = window.findChild<UserAccountButton*>();
    button->setFocus(Qt::TabFocusReason);
    window.menu()->action(Command::account)->trigger();
    auto* sheet = window.findChild<AccountSettingsWindow*>();
    ASSERT_TRUE(sheet && sheet->isPresented());
    EXPECT_FALSE(window.menu()->action(Command::undo)->isEnabled());
    for (int i = 0; i < 30; ++i) {
        QTest::keyClick(window.focusWidget(), i < 15 ? Qt::Key_Tab : Qt::Key_Backtab);
        ASSERT_TRUE(sheet->isAncestorOf(window.focusWidget()));
    }
    button->setFocus();    // whatever asks for it from behind
    EXPECT_TRUE(sheet->isAncestorOf(window.focusWidget()));
    window.resize(1200, 720);
    EXPECT_EQ(sheet->geometry(), window.rect());
    EXPECT_TRUE(window.rect().contains(sheet->box()->geometry()));
    EXPECT_EQ(window.childAt(5, 5), sheet);
    QTest::keyClick(window.focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(sheet->isPresented());
    EXPECT_FALSE(session.accountPanel());
    EXPECT_EQ(window.focusWidget(), button);
    EXPECT_TRUE(window.menu()->action(Command::undo)->isEnabled());
}

TEST_F(AccountScreensTest, CreditsAreBoughtAndThePasswordIsChanged)
{
    signIn();
    session.setAccountPanel(AccountPanelDestination::credits);
    auto* sheet = window.findChild<AccountSettingsWindow*>();
    CreditsDetailPanel* credits = sheet->creditsPanel();
    EXPECT_EQ(credits->total(), u"10 EUR"_s);
    credits->customAmount()->choice()->click();
    const auto buy = [&] {
        QTest::keyClick(credits->customAmount()->field()->edit(), Qt::Key_Return);
    };
    buy();
    EXPECT_FALSE(account.session().isWorking());
    QTest::keyClicks(credits->customAmount()->field()->edit(), u"48700"_s);
    EXPECT_EQ(credits->total(), u"49.000 créditos · 49 EUR"_s);
    account.answer("POST /api/stripe/checkout",
                   R"({"url":"https://example.org/p","sessionId":"s"})");
    buy();
    ASSERT_TRUE(isDone());
    EXPECT_TRUE(account.log().last().contains(R"("credits":49000)"));
    EXPECT_EQ(account.opened(), QList{QUrl(u"https://example.org/p"_s)});

    session.setAccountPanel(AccountPanelDestination::account);
    const auto fields = sheet->accountPanel()->findChildren<FormField*>();
    for (FormField* field : fields)
        field->edit()->setText(u"nueva"_s);
    account.answer("POST /api/auth/password", R"({"error":"invalid_credentials"})", 400);
    QTest::keyClick(fields.last()->edit(), Qt::Key_Return);
    ASSERT_TRUE(isDone());
    EXPECT_EQ(fields.last()->text(), u"nueva"_s);
    account.answer("POST /api/auth/password", R"({"ok":true})");
    QTest::keyClick(fields.last()->edit(), Qt::Key_Return);
    ASSERT_TRUE(isDone());
    EXPECT_TRUE(QTest::qWaitFor([&] { return fields.last()->text().isEmpty(); }));
}
