#include "account/AccountChecks.h"
#include "account/AccountTexts.h"
#include "account/CreditAmounts.h"
#include "app/account/AccountDetailPanel.h"
#include "app/account/AccountPanelView.h"
#include "app/account/AccountSettingsWindow.h"
#include "app/account/AuthGateView.h"
#include "app/account/CreditsDetailPanel.h"
#include "app/account/CustomAmount.h"
#include "app/account/LoginView.h"
#include "app/account/PurchasesDetailPanel.h"
#include "app/account/UserAccountButton.h"
#include "app/controls/Button.h"
#include "app/controls/CopyButton.h"
#include "app/controls/Notice.h"
#include "app/controls/fields/FormField.h"
#include "app/desktop/AppVersion.h"
#include "app/settings/UpdatesDetailPanel.h"
#include "app/window/MainWindow.h"
#include "app/window/StatusLine.h"
#include "app/window/StudioMenu.h"
#include "app/window/StudioShell.h"
#include "platform/NotificationCenter.h"
#include "platform/PreferencesStore.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"
#include "tests/app/Events.h"
#include "tests/app/Spoken.h"
#include "tests/support/ScriptedAccount.h"

#include <QAccessible>
#include <QAction>
#include <QClipboard>
#include <QTemporaryDir>

#include <QtTest/QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// Shows a window with a scripted account service. Nobody is signed in.
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
    QString status() { return session.statusLog().current().sentence; }
    bool isTold(const QString& sentence)
    {
        return QTest::qWaitFor([&] { return status() == sentence; });
    }
    AccountPanelView* popover()
    {
        window.findChild<UserAccountButton*>()->click();
        return window.findChild<AccountPanelView*>();
    }
    template <typename Part>
    static Part* named(QWidget* in, const QString& name)
    {
        for (Part* part : in->findChildren<Part*>()) {
            if (part->accessibleName() == name)
                return part;
        }
        return nullptr;
    }
    QUrl photo(const QString& name = u"f.png"_s)
    {
        QImage image(60, 40, QImage::Format_RGB32);
        image.fill(Qt::red);
        EXPECT_TRUE(image.save(folder.filePath(name)));
        return QUrl::fromLocalFile(folder.filePath(name));
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
        {u"1.5"_s, std::nullopt}, {u"1500.50"_s, std::nullopt},
        {u"1 500"_s, 2000},       {u"1.000 000"_s, 1000000},
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
                                 u"1.99999999999999999999999"_s, u"v1.10"_s})
        EXPECT_TRUE(AppVersion::isRemoteVersionNewer(newer)) << qPrintable(newer);
    for (const QString& notNewer :
         {u""_s, u"  "_s, u"1.9.2"_s, u"1.09.2"_s, u"1.9"_s, u"1.8.9"_s, u"."_s, u"0000"_s,
          u"1.9.2b"_s, u"1.9.2-rc1"_s, u"v1.9.2"_s, u"v"_s, u"vv2"_s, u"nueva"_s, u"~2"_s})
        EXPECT_FALSE(AppVersion::isRemoteVersionNewer(notNewer)) << qPrintable(notNewer);
    EXPECT_FALSE(AppVersion::isRemoteVersionNewer(std::nullopt));
    QCoreApplication::setApplicationVersion(u"1.9.2-rc1"_s);
    EXPECT_TRUE(AppVersion::isRemoteVersionNewer(u"1.9.2"_s));
    QCoreApplication::setApplicationVersion(before);
}

TEST(AccountTexts, WhatTheServiceTellsIsOneBoundedLine)
{
    EXPECT_EQ(shownLine(u"Ana\u202e\n\u0007 María\t"_s), u"Ana María"_s);
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
    for (const QString& command : {u"Importar imágenes…"_s, u"Deshacer"_s, u"Ajustes de Moltiva"_s})
        EXPECT_FALSE(window.menu()->action(command)->isEnabled());
    EXPECT_TRUE(window.menu()->action(u"Salir"_s)->isEnabled());
    window.open({photo()});
    QTest::qWait(100);
    account.release();
    ASSERT_TRUE(isAt(Gate::signedOut));
    EXPECT_EQ(account.log().count("GET /api/auth/me"), 1);
    EXPECT_FALSE(window.menu()->action(u"Importar imágenes…"_s)->isEnabled());
    // Tab never leads from the gate to the widgets behind it.
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
    EXPECT_TRUE(window.menu()->action(u"Importar imágenes…"_s)->isEnabled());
    // A file opened right after the sign-in joins the batch of the file that waited for the
    // sign-in.
    window.open({photo(u"g.png"_s)});
    EXPECT_TRUE(QTest::qWaitFor([this] { return session.batch().items.size() == 2; }));

    ASSERT_TRUE(isDone());
    EXPECT_FALSE(login()->primary(LoginMode::signIn)->isWorking());
    EXPECT_FALSE(login()->email()->edit()->isReadOnly());
    account.answer("POST /api/auth/logout", R"({"ok":true})");
    window.menu()->action(u"Cerrar sesión"_s)->trigger();
    ASSERT_TRUE(isAt(Gate::signedOut));
    EXPECT_EQ(session.batch().items.size(), 2);
    EXPECT_FALSE(window.menu()->action(u"Deshacer"_s)->isEnabled());
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
    EXPECT_EQ(send(LoginMode::createAccount), u"La contraseña necesita al menos 8 caracteres."_s);
    QTest::keyClicks(login()->password()->edit(), u"dostres"_s);
    EXPECT_EQ(send(LoginMode::createAccount), u"Las dos contraseñas no coinciden."_s);
    EXPECT_EQ(account.log().size(), sent);
    login()->password()->edit()->setFocus();
    QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
    const auto* next = qobject_cast<FormEdit*>(window.focusWidget());
    ASSERT_TRUE(next) << "not the eye of the first";
    EXPECT_EQ(next->accessibleName(), u"Repetir contraseña"_s);

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
    primary->setFocus(Qt::TabFocusReason);
    QTest::keyClick(primary, Qt::Key_Return);
    primary->click();    // as a screen reader does
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
    QWidget* first = QApplication::focusWidget();
    ASSERT_TRUE(first && first->isVisible()) << "before any click";
    EXPECT_EQ(first->accessibleName(), u"Importar imágenes"_s);
    auto* button = window.findChild<UserAccountButton*>();
    button->setFocus(Qt::TabFocusReason);
    window.menu()->action(u"Cuenta…"_s)->trigger();
    auto* sheet = window.findChild<AccountSettingsWindow*>();
    ASSERT_TRUE(sheet && sheet->isPresented());
    EXPECT_FALSE(window.menu()->action(u"Deshacer"_s)->isEnabled());
    for (int i = 0; i < 30; ++i) {
        QTest::keyClick(window.focusWidget(), i < 15 ? Qt::Key_Tab : Qt::Key_Backtab);
        ASSERT_TRUE(sheet->isAncestorOf(window.focusWidget()));
    }
    button->setFocus();    // `button` is behind the sheet and does not get the focus
    EXPECT_TRUE(sheet->isAncestorOf(window.focusWidget()));
    QAccessibleInterface* shell = QAccessible::queryAccessibleInterface(window.shell());
    EXPECT_EQ(shell->childCount(), 0);
    EXPECT_TRUE(QAccessible::queryAccessibleInterface(sheet)->state().modal);
    window.resize(1200, 720);
    EXPECT_EQ(sheet->geometry(), window.rect());
    EXPECT_TRUE(window.rect().contains(sheet->box()->geometry()));
    EXPECT_EQ(window.childAt(5, 5), sheet);
    QTest::keyClick(window.focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(sheet->isPresented());
    EXPECT_FALSE(session.accountPanel());
    EXPECT_EQ(window.focusWidget(), button);
    EXPECT_GT(shell->childCount(), 0);
    EXPECT_TRUE(window.menu()->action(u"Deshacer"_s)->isEnabled());
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
    // Users without a browser can copy the address.
    named<PushButton>(credits, u"Copiar dirección de pago"_s)->click();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"https://example.org/p"_s);

    session.setAccountPanel(AccountPanelDestination::account);
    const auto fields = sheet->accountPanel()->findChildren<FormField*>();
    for (FormField* field : fields)
        field->edit()->setText(u"novísima"_s);
    account.answer("POST /api/auth/password", R"({"error":"invalid_credentials"})", 400);
    QTest::keyClick(fields.last()->edit(), Qt::Key_Return);
    ASSERT_TRUE(isDone());
    EXPECT_EQ(fields.last()->text(), u"novísima"_s);
    const auto placeOf = [&](const QWidget* widget) {
        return widget->mapTo(sheet->accountPanel(), QPoint()).y();
    };
    settle();
    const auto* told = sheet->accountPanel()->findChild<Notice*>();
    const auto* change = named<PushButton>(sheet->accountPanel(), u"Actualizar contraseña"_s);
    EXPECT_TRUE(told->isVisible());
    EXPECT_GT(placeOf(told), placeOf(change)) << "below what was pressed";
    EXPECT_LT(placeOf(told), placeOf(change) + 2 * change->height());
    account.answer("POST /api/auth/password", R"({"ok":true})");
    QTest::keyClick(fields.last()->edit(), Qt::Key_Return);
    ASSERT_TRUE(isDone());
    EXPECT_TRUE(QTest::qWaitFor([&] { return fields.last()->text().isEmpty(); }));
}

TEST_F(AccountScreensTest, WhatWasTypedDoesNotReachWhoComesNext)
{
    signIn();
    const auto fields = [this] {
        session.setAccountPanel(AccountPanelDestination::account);
        return window.findChild<AccountDetailPanel*>()->findChildren<FormField*>();
    };
    for (FormField* field : fields())
        QTest::keyClicks(field->edit(), u"tecleado"_s);
    session.setAccountPanel(std::nullopt);
    EXPECT_EQ(fields().last()->text(), QString());
    account.answer("POST /api/auth/logout", R"({"ok":true})");
    account.session().logout();
    ASSERT_TRUE(isAt(Gate::signedOut));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    account.answer("POST /api/auth/login", ScriptedAccount::summary("Otra"));
    account.session().login(u"otra@b.es"_s, u"x"_s);
    ASSERT_TRUE(isAt(Gate::open));
    EXPECT_EQ(fields().first()->text(), u"Otra"_s);
}

TEST_F(AccountScreensTest, OutcomesAreToldWhereNoScreenShowsThem)
{
    show();
    ASSERT_TRUE(isAt(Gate::signedOut));
    notificationCenter().post(Notification::deepLinkReceived, QUrl(u"moltiva://nada"_s));
    EXPECT_EQ(notice(), u"Moltiva no reconoce el enlace que se ha abierto."_s);
    notificationCenter().post(Notification::deepLinkReceived, QUrl(u"sftp://e.es/a.jpg"_s));
    EXPECT_EQ(notice(), u"Moltiva solo abre fotos que están en este equipo."_s);
    account.answer("POST /api/auth/login", ScriptedAccount::summary());
    account.session().login(u"a@b.es"_s, u"x"_s);
    EXPECT_TRUE(isTold(u"Sesión iniciada."_s));
    account.answer("POST /api/auth/logout", R"({"error":"x"})", 500);
    for (int i = 0; i < 2; ++i) {    // the second failure is told too, although it equals the first
        window.menu()->action(u"Cerrar sesión"_s)->trigger();
        EXPECT_EQ(session.statusLog().current().kind, StatusKind::working);
        ASSERT_TRUE(isDone());
        EXPECT_TRUE(isTold(account.session().message()));
    }
    for (int i = 0; i < 2; ++i) {    // so is that of a second link
        session.setStatus(u"Otra cosa."_s);
        notificationCenter().post(Notification::deepLinkReceived,
                                  QUrl(u"moltiva://social-connected?status=no"_s));
        EXPECT_TRUE(isTold(u"No se ha completado la conexión de la red social."_s));
    }
}

TEST_F(AccountScreensTest, PurchasesAreEmptyOnlyOnceThatIsKnown)
{
    signIn();
    account.answer("GET /api/account/purchases", R"({"error":"x"})", 500);
    session.setAccountPanel(AccountPanelDestination::purchases);
    auto* panel = window.findChild<PurchasesDetailPanel*>();
    const auto* none = named<QWidget>(panel, u"Sin compras recientes"_s);
    auto* refresh = named<PushButton>(panel, u"Actualizar historial"_s);
    const auto* told = panel->findChild<Notice*>();
    ASSERT_TRUE(isDone());
    EXPECT_FALSE(none->isVisible());
    EXPECT_FALSE(told->text().isEmpty());
    account.answer("GET /api/account/purchases", R"({"purchases":[]})");
    refresh->click();
    ASSERT_TRUE(isDone());
    EXPECT_TRUE(QTest::qWaitFor([&] { return none->isVisible(); }));
    EXPECT_EQ(told->text(), QString());
    account.answer("GET /api/account/purchases",
                   R"({"purchases":[{"id":"7","kind":"credits","amountCents":1000,
                       "detail":"10.000","invoiceURL":"https://example.org/1"}]})");
    account.answer("GET /api/account/purchases/link", R"({"url":"https://example.org/d"})");
    refresh->click();
    ASSERT_TRUE(isDone());
    PushButton* invoice = nullptr;
    for (auto* each : panel->findChildren<PushButton*>()) {
        if (each->text() == u"Ver factura"_s)
            invoice = each;
    }
    ASSERT_TRUE(invoice);
    const QString description = invoice->accessibleDescription();
    const auto asked = account.log().size();
    invoice->click();
    invoice->click();
    ASSERT_TRUE(isDone());
    EXPECT_EQ(account.log().size(), asked + 1);
    EXPECT_EQ(account.opened(), QList{QUrl(u"https://example.org/d"_s)});
    EXPECT_EQ(invoice->accessibleDescription(), description);
}

TEST_F(AccountScreensTest, ThePopoverFitsWhatItShows)
{
    signIn();
    AccountPanelView* view = popover();
    settle();
    const int folded = view->height();
    view->setPassword(AccountPanelView::Fold::open);
    settle();
    EXPECT_GT(view->height(), folded);
    view->setPassword(AccountPanelView::Fold::folded);
    settle();
    EXPECT_EQ(view->height(), folded);

    auto* name = view->findChild<FormField*>();
    name->edit()->clear();
    QTest::keyClick(name->edit(), Qt::Key_Return);
    EXPECT_EQ(view->findChild<Notice*>()->text(), u"Escribe tu nombre."_s);
    account.answer("PATCH /api/auth/profile", ScriptedAccount::summary("LUCÍA"));
    QTest::keyClicks(name->edit(), u"lucia"_s);
    EXPECT_EQ(view->findChild<Notice*>()->text(), QString());
    QTest::keyClick(name->edit(), Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return name->text() == u"LUCÍA"_s; }));
    EXPECT_EQ(view->findChild<Notice*>()->text(), u"Perfil guardado."_s);
}

TEST_F(AccountScreensTest, EveryControlHasARoleAndANameOfItsOwn)
{
    signIn();
    AccountPanelView* view = popover();
    view->setDetails(AccountPanelView::Fold::open);
    view->setPassword(AccountPanelView::Fold::open);
    settle();
    EXPECT_EQ(unclearControls(window), "") << "the popover";
    view->close();
    account.answer("GET /api/account/purchases", R"({"purchases":[
        {"id":"1","kind":"credits","createdAt":"2026-11-20T10:15:00Z","amountCents":1000,
         "detail":"10.000 créditos","invoiceURL":"https://example.org/1"},
        {"id":"2","kind":"credits","createdAt":"2026-11-20T11:15:00Z","amountCents":1000,
         "detail":"20.000 créditos","invoiceURL":"https://example.org/2"}]})");
    for (const auto page : allCases<AccountPanelDestination>()) {
        session.setAccountPanel(page);
        ASSERT_TRUE(isDone());
        settle();
        EXPECT_EQ(unclearControls(window), "") << "the sheet " << int(page);
    }
    account.answer("POST /api/auth/logout", R"({"ok":true})");
    account.session().logout();
    ASSERT_TRUE(isAt(Gate::signedOut));
    for (const LoginMode mode : {LoginMode::signIn, LoginMode::createAccount, LoginMode::recover}) {
        login()->setMode(mode);
        EXPECT_EQ(unclearControls(window), "") << "sign-in " << int(mode);
    }
}

TEST_F(AccountScreensTest, NothingIsUpToDateUnlessThatIsKnown)
{
    UpdatesDetailPanel panel;
    const auto says = [&panel](const QString& text) {
        return std::ranges::any_of(panel.findChildren<QWidget*>(), [&](const QWidget* part) {
            return part->accessibleName().contains(text);
        });
    };
    EXPECT_FALSE(says(u"al día"_s));
    panel.setLatest(u"0.1"_s, {});
    EXPECT_TRUE(says(u"al día"_s));
    panel.setLatest(u"999.0"_s, {});
    EXPECT_FALSE(says(u"al día"_s));
}

TEST_F(AccountScreensTest, AnAddressThatIsToldCanBeCopied)
{
    Notice told(2);
    told.show();
    told.tell(NoticeKind::problem, u"Abre tú esta dirección: https://a.es/x?y=1"_s);
    told.copyButton()->click();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"https://a.es/x?y=1"_s);
    told.tell(NoticeKind::info, u"Hecho."_s);
    EXPECT_FALSE(told.copyButton()->isVisible());
}
