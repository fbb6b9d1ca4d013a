#include "tools/AccountScreens.h"

#include "app/account/AccountPanelView.h"
#include "app/account/AccountSettingsWindow.h"
#include "app/account/AuthGateView.h"
#include "app/account/CreditsDetailPanel.h"
#include "app/account/CustomAmount.h"
#include "app/account/LoginView.h"
#include "app/account/UserAccountButton.h"
#include "app/controls/Button.h"
#include "app/controls/PackageCard.h"
#include "app/controls/fields/FormField.h"
#include "app/settings/AppSettingsWindow.h"
#include "app/theme/Theme.h"
#include "app/window/MainWindow.h"
#include "platform/PreferencesStore.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"
#include "tests/support/ScriptedAccount.h"
#include "tools/WindowPictures.h"

#include <QDir>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

const QByteArray purchases = R"({"purchases":[
{"id":"1","kind":"credits","createdAt":"2026-11-20T10:15:00Z","amountCents":1000,
 "detail":"10.000 créditos","invoiceURL":"https://example.org/1"},
{"id":"2","kind":"credits","createdAt":"2026-10-02T08:00:00.250Z","amountCents":10000,
 "detail":"100.000 créditos","receiptURL":"https://example.org/2"},
{"id":"3","kind":"storage","createdAt":"hace mucho","amountCents":123456,
 "detail":"Ampliación a 50 GB durante un año, contratada desde otra aplicación de la misma casa"},
{"id":"4","kind":"credits","amountCents":2000,"detail":"20.000 créditos"}]})";

class AccountScreens {
public:
    explicit AccountScreens(const QDir& out)
        : m_pictures(out, m_window, [this] { return m_window.isIdle(); })
    {
        m_account.hold();
    }

    bool takeAll()
    {
        m_window.show();
        m_session.restoreWorkspaceIfNeeded();
        take(u"gate-checking"_s);
        m_account.release();
        return WindowPictures::waitFor(
                   [this] { return m_window.gate()->state() == Gate::signedOut; }) &&
               takeGate() && takePopover() && takeSheets();
    }

private:
    bool takeGate()
    {
        LoginView* login = m_window.gate()->login();
        m_window.activateWindow();
        login->email()->edit()->setText(u"lucia@casaliebana.es"_s);
        login->password()->edit()->setText(u"secreto123"_s);
        login->password()->edit()->setFocus();
        take(u"gate-sign-in"_s);
        m_window.open({QUrl::fromLocalFile(u"/a.jpg"_s), QUrl::fromLocalFile(u"/b.jpg"_s)});
        login->setMode(LoginMode::createAccount);
        login->primary(LoginMode::createAccount)->click();
        take(u"gate-create-account-mismatch"_s);
        login->setMode(LoginMode::recover);
        take(u"gate-recover"_s);
        login->setMode(LoginMode::signIn);
        m_account.answer("POST /api/auth/login", R"({"error":"invalid_credentials"})", 400);
        m_account.hold();
        login->primary(LoginMode::signIn)->click();
        take(u"gate-working"_s);
        m_account.release();
        bool reached = isDone();
        take(u"gate-refused"_s);
        m_account.answer("POST /api/auth/login", ScriptedAccount::summary());
        m_account.answer("GET /api/auth/me", ScriptedAccount::summary());
        login->primary(LoginMode::signIn)->click();
        return WindowPictures::waitFor([this] { return m_window.gate()->state() == Gate::open; }) &&
               reached;
    }

    bool isDone()
    {
        return WindowPictures::waitFor([this] { return !m_account.session().isWorking(); });
    }

    template <typename Widget>
    Widget* found() const
    {
        return m_window.findChild<Widget*>();
    }

    bool takePopover()
    {
        m_window.resize(1440, 900);
        auto* button = found<UserAccountButton>();
        // Opens the popover again for each size, because it closes when the window is resized.
        const auto takeOpen = [&](const QString& name, auto prepare) {
            for (const QSize size : WindowPictures::sizes) {
                m_window.resize(size);
                button->click();
                for (auto* view : m_window.findChildren<AccountPanelView*>()) {
                    if (view->isVisible())
                        prepare(*view);
                }
                m_pictures.takeAtThisSize(name);
                button->click();
                m_pictures.waitUntilCalm();
            }
        };
        takeOpen(u"popover"_s, [](AccountPanelView&) {});
        takeOpen(u"popover-folded"_s,
                 [](AccountPanelView& view) { view.setDetails(AccountPanelView::Fold::folded); });
        m_account.answer("POST /api/stripe/checkout",
                         R"({"url":"https://example.org","sessionId":"s1"})");
        m_account.session().buyCredits(10000);
        const bool reached = WindowPictures::waitFor(
            [this] { return m_account.session().pendingCheckoutSessionId().has_value(); });
        takeOpen(u"popover-pending-password"_s,
                 [](AccountPanelView& view) { view.setPassword(AccountPanelView::Fold::open); });
        return reached;
    }

    bool takeSheets()
    {
        m_session.setAccountPanel(AccountPanelDestination::credits);
        take(u"credits-pending"_s);
        found<CreditsDetailPanel>()->customAmount()->choice()->click();
        take(u"credits-pending-custom"_s);
        found<CreditsDetailPanel>()->findChild<PackageCard*>()->click();
        m_account.answer("POST /api/stripe/confirm", R"({"ok":true,"balance":123456})");
        m_account.answer("GET /api/account/purchases", R"({"purchases":[]})");
        m_account.session().confirmPendingCheckout();
        bool reached = isDone();
        take(u"credits"_s);
        CustomAmount* custom = found<CreditsDetailPanel>()->customAmount();
        custom->choice()->click();
        custom->field()->edit()->setFocus();
        custom->field()->edit()->insert(u"48700"_s);
        take(u"credits-custom"_s);
        m_session.setAccountPanel(AccountPanelDestination::account);
        take(u"account"_s);
        m_session.setAccountPanel(AccountPanelDestination::storage);
        take(u"storage"_s);
        m_session.setAccountPanel(AccountPanelDestination::purchases);
        reached &= isDone();
        take(u"purchases-none"_s);
        m_account.answer("GET /api/account/purchases", purchases);
        m_account.session().refreshPurchaseHistory();
        reached &= isDone();
        take(u"purchases"_s);
        m_account.answer("PATCH /api/auth/profile",
                         ScriptedAccount::summary("Maria del Carmen Fernández-Villaverde y "
                                                  "Rodríguez de Sotomayor",
                                                  987654));
        m_account.session().updateProfile({});
        reached &= isDone();
        m_session.setAccountPanel(AccountPanelDestination::account);
        take(u"account-long-name"_s);
        m_session.setAccountPanel(std::nullopt);
        take(u"studio-long-name"_s);
        m_session.setAppSettingsPresented(true);
        take(u"updates"_s);
        if (auto* sheet = m_window.findChild<AppSettingsWindow*>())
            sheet->setDestination(AppSettingsDestination::localAI);
        take(u"local-ai"_s);
        if (auto* sheet = m_window.findChild<AppSettingsWindow*>())
            sheet->setDestination(AppSettingsDestination::appearance);
        take(u"appearance"_s);
        m_session.setAppSettingsPresented(false);
        return reached;
    }

    bool take(const QString& name) { return m_pictures.take(name); }

    QTemporaryDir m_folder;
    std::shared_ptr<PhotoCache> m_cache =
        std::make_shared<PhotoCache>(m_folder.filePath(u"cache"_s));
    PreferencesStore m_preferences{m_folder.filePath(u"preferences.sqlite"_s)};
    StudioSession m_session{m_cache, m_preferences};
    ScriptedAccount m_account{m_preferences, Scripted::signedOut};
    MainWindow m_window{m_session, m_account.session(), m_cache, m_preferences};
    WindowPictures m_pictures;
};

}    // namespace

bool takeAccountScreens(const QDir& out)
{
    AccountScreens screens(out);
    return screens.takeAll();
}
