#include "app/account/AccountBinding.h"

#include "account/AccountSession.h"
#include "account/AccountTexts.h"
#include "app/account/AccountDetailPanel.h"
#include "app/account/AccountPanelView.h"
#include "app/account/AccountSettingsWindow.h"
#include "app/account/AuthGateView.h"
#include "app/account/CreditsDetailPanel.h"
#include "app/account/LoginView.h"
#include "app/account/PurchasesDetailPanel.h"
#include "app/account/UserAccountButton.h"
#include "app/forms/AccountShown.h"
#include "app/settings/AppSettingsWindow.h"
#include "app/settings/LocalAIDetailPanel.h"
#include "studio/StudioSession.h"

#include <QGuiApplication>

using namespace Qt::StringLiterals;

AccountBinding::AccountBinding(AccountSession& account, StudioSession& studio, AuthGateView* gate,
                               UserAccountButton* button, QWidget* window)
    : m_account(account), m_studio(studio), m_gate(gate), m_button(button), m_window(window)
{
    connectGate();
    connect(m_button, &UserAccountButton::clicked, this, &AccountBinding::togglePopover);
    connect(&m_account, &AccountSession::changed, this, &AccountBinding::show);
    connect(&m_studio, &StudioSession::presentationChanged, this, &AccountBinding::showSheets);
    connect(qApp, &QGuiApplication::applicationStateChanged, this,
            &AccountBinding::refreshWhenActive);
    show();
}

void AccountBinding::connectGate()
{
    connect(m_gate, &AuthGateView::appeared, this, &AccountBinding::start);
    const LoginView* login = m_gate->login();
    connect(login, &LoginView::loginRequested, this,
            [this](const QString& email, const QString& password) {
                m_account.login(email, password);
            });
    connect(login, &LoginView::registrationRequested, this,
            [this](const QString& email, const QString& password) {
                m_account.registerAccount(email, password);
            });
    connect(login, &LoginView::passwordResetRequested, this,
            [this](const QString& email) { m_account.requestPasswordReset(email); });
    connect(login, &LoginView::googleRequested, this, [this] { m_account.openGoogleLogin(); });
    connect(login, &LoginView::retryRequested, this, [this] { m_account.refresh(); });
    connect(login, &LoginView::testMailRequested, this,
            [this] { m_account.openPage(m_account.testMailURL()); });
}

// Calls bootstrap() only the first time that the gate appears.
void AccountBinding::start()
{
    if (m_didBootstrap)
        return;
    m_didBootstrap = true;
    m_account.bootstrap();
}

void AccountBinding::refreshWhenActive(Qt::ApplicationState state)
{
    const bool holdsSession = m_account.isAuthenticated() || m_account.mayBeSignedIn();
    if (state == Qt::ApplicationActive && holdsSession && !m_account.isLoading())
        m_account.refreshSilently();
}

bool AccountBinding::isSheetPresented() const
{
    return (m_accountSettings && m_accountSettings->isPresented()) ||
           (m_appSettings && m_appSettings->isPresented());
}

AccountShown AccountBinding::shown() const
{
    const AccountProfile profile = m_account.account().profile.value_or(AccountProfile());
    return {
        .name = m_account.displayName(),
        .fullName = profile.fullName.value_or(QString()),
        .email = profile.email.value_or(QString()),
        .balance = m_account.account().balance,
        .message = m_account.outcome(),
        .isProblem = m_account.isProblem(),
        .isWorking = m_account.isWorking(),
        .hasPendingCheckout = m_account.pendingCheckoutSessionId().has_value(),
        .checkoutAddress = m_account.checkoutPage().toString(QUrl::FullyEncoded),
        .mayBeSignedIn = m_account.mayBeSignedIn(),
        .hasTestMail = !m_account.testMailURL().isEmpty(),
    };
}

void AccountBinding::show()
{
    const AccountShown account = shown();
    m_button->setAccount(account.name, account.balance);
    m_gate->login()->setAccount(account);
    if (m_popover)
        m_popover->setAccount(account);
    if (m_accountSettings) {
        m_accountSettings->setAccount(account);
        m_accountSettings->purchasesPanel()->setPurchases(m_account.purchaseHistory());
    }
    showGate();
    tell();
}

bool AccountBinding::isAccountSeen() const
{
    return m_gate->state() != Gate::open || isSheetPresented() ||
           (m_popover && m_popover->isVisible());
}

void AccountBinding::tell()
{
    const bool isWorking = m_account.isActing();
    const bool isDone = m_wasWorking && !isWorking && !m_isLoadingPurchases;
    const bool begins = isWorking && !m_wasWorking;
    const bool isOutcome = isDone || m_account.outcomes() != m_outcomes;
    m_outcomes = m_account.outcomes();
    m_wasWorking = isWorking;
    if (begins && !isAccountSeen()) {
        m_toldWorking = true;
        Q_EMIT working();
    } else if (!isWorking && (m_toldWorking || (isOutcome && !isAccountSeen()))) {
        m_toldWorking = false;
        Q_EMIT told(shownText(m_account.outcome()), m_account.isProblem());
    }
}

void AccountBinding::showGate()
{
    const Gate before = m_gate->state();
    const Gate now = !m_didBootstrap || m_account.isLoading() ? Gate::checking
                     : m_account.isAuthenticated()            ? Gate::open
                                                              : Gate::signedOut;
    if (now == before)
        return;
    if (before == Gate::open)
        closeAccountScreens();
    m_gate->setState(now);
    if (now == Gate::open) {
        m_gate->login()->clearPasswords();
        m_gate->login()->setMode(LoginMode::signIn);
        Q_EMIT gateOpened();
    } else if (before == Gate::open) {
        Q_EMIT gateClosed();
    }
}

// Deletes the sheets with all that was typed in them: the next user may be somebody else.
void AccountBinding::closeAccountScreens()
{
    if (m_popover)
        m_popover->close();
    m_studio.setAccountPanel(std::nullopt);
    m_studio.setAppSettingsPresented(false);
    if (m_accountSettings)
        m_accountSettings->deleteLater();
    if (m_appSettings)
        m_appSettings->deleteLater();
    m_accountSettings = nullptr;
    m_appSettings = nullptr;
}

void AccountBinding::showSheets()
{
    const std::optional<AccountPanelDestination> panel = m_studio.accountPanel();
    const bool wantsSettings = m_studio.isAppSettingsPresented() && !panel;
    if (m_appSettings && !wantsSettings)
        m_appSettings->dismiss();
    if (m_accountSettings && !panel) {
        m_accountSettings->dismiss();
        m_accountSettings->accountPanel()->clearPasswords();
    }
    if (panel) {
        accountSettings()->setPage(int(*panel));
        accountSettings()->present();
    } else if (wantsSettings) {
        appSettings()->present();
    }
    Q_EMIT sheetChanged();
}

void AccountBinding::presentLocalAISettings()
{
    appSettings()->setDestination(AppSettingsDestination::localAI);
    m_studio.setAppSettingsPresented(true);
}

void AccountBinding::togglePopover()
{
    if (m_popover && m_popover->isVisible()) {
        m_popover->close();
        return;
    }
    m_popover = new AccountPanelView(m_button);
    connectForms(m_popover.data());
    connect(m_popover, &AccountPanelView::refreshRequested, this, [this] { m_account.refresh(); });
    connect(m_popover, &AccountPanelView::destinationChosen, this,
            [this](AccountPanelDestination panel) { m_studio.setAccountPanel(panel); });
    connect(m_popover, &AccountPanelView::settingsRequested, this,
            [this] { m_studio.setAppSettingsPresented(true); });
    m_popover->setAccount(shown());
    m_popover->present();
}

// Connects those of the forms for profile, password and purchase that `panel` has.
template <typename Panel>
void AccountBinding::connectForms(Panel* panel)
{
    if constexpr (requires { &Panel::profileEdited; }) {
        connect(panel, &Panel::profileEdited, this,
                [this](const QString& fullName) { saveProfile(fullName); });
        connect(panel, &Panel::passwordChangeRequested, this,
                [this](const QString& current, const QString& password, const QString& repeated) {
                    changePassword(current, password, repeated);
                });
        connect(panel, &Panel::logoutRequested, this, [this] { m_account.logout(); });
    }
    if constexpr (requires { &Panel::purchaseRequested; }) {
        connect(panel, &Panel::purchaseRequested, this,
                [this](int credits) { m_account.buyCredits(credits); });
        connect(panel, &Panel::checkoutConfirmed, this,
                [this] { m_account.confirmPendingCheckout(); });
    }
}

AccountSettingsWindow* AccountBinding::accountSettings()
{
    if (m_accountSettings)
        return m_accountSettings;
    m_accountSettings = new AccountSettingsWindow(m_window);
    connectForms(m_accountSettings->accountPanel());
    connectForms(m_accountSettings->creditsPanel());
    const PurchasesDetailPanel* purchases = m_accountSettings->purchasesPanel();
    connect(purchases, &PurchasesDetailPanel::historyRequested, this, [this] { loadPurchases(); });
    connect(purchases, &PurchasesDetailPanel::documentRequested, this,
            [this](const QString& id) { m_account.openPurchaseDocument(id); });
    connect(m_accountSettings, &SettingsSheet::pageChosen, this,
            [this](int page) { m_studio.setAccountPanel(AccountPanelDestination(page)); });
    connect(m_accountSettings, &Sheet::closeRequested, this,
            [this] { m_studio.setAccountPanel(std::nullopt); });
    show();
    return m_accountSettings;
}

AppSettingsWindow* AccountBinding::appSettings()
{
    if (m_appSettings)
        return m_appSettings;
    m_appSettings = new AppSettingsWindow(m_window);
    connect(m_appSettings->localAIPanel(), &LocalAIDetailPanel::textPanelRequested, this, [this] {
        m_studio.setAppSettingsPresented(false);
        Q_EMIT textPanelRequested();
    });
    connect(m_appSettings, &Sheet::closeRequested, this,
            [this] { m_studio.setAppSettingsPresented(false); });
    show();
    Q_EMIT appSettingsMade(m_appSettings);
    return m_appSettings;
}

// Clears the typed passwords only after a success, so that the user can correct refused ones.
QCoro::Task<> AccountBinding::changePassword(QString current, QString password, QString repeated)
{
    const QPointer<AccountBinding> self(this);
    const bool changed = co_await m_account.changePassword(current, password, repeated);
    if (!self || !changed)
        co_return;
    if (m_popover)
        m_popover->clearPasswords();
    if (m_accountSettings)
        m_accountSettings->accountPanel()->clearPasswords();
}

QCoro::Task<> AccountBinding::saveProfile(QString fullName)
{
    const QPointer<AccountBinding> self(this);
    const bool saved = co_await m_account.updateProfile(fullName);
    if (!self || !saved)
        co_return;
    if (m_popover)
        m_popover->setNameSaved();
    if (m_accountSettings)
        m_accountSettings->accountPanel()->setNameSaved();
}

QCoro::Task<> AccountBinding::loadPurchases()
{
    const QPointer<AccountBinding> self(this);
    m_isLoadingPurchases = true;
    const bool loaded = co_await m_account.refreshPurchaseHistory();
    if (!self)
        co_return;
    m_isLoadingPurchases = false;
    using Loading = PurchasesDetailPanel::Loading;
    if (m_accountSettings)
        m_accountSettings->purchasesPanel()->setLoaded(loaded ? Loading::done : Loading::failed);
}
