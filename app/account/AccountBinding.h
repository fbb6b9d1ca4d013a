#pragma once
#include "account/AccountPanelDestination.h"

#include <QCoroTask>
#include <QObject>
#include <QPointer>

class AccountPanelView;
class AccountSession;
class AccountSettingsWindow;
class AppSettingsWindow;
class AuthGateView;
class StudioSession;
class UserAccountButton;
struct AccountShown;

// Connects AccountSession with the sign-in gate, the account button and its popover, and the
// settings sheets. StudioSession stores which sheet is open.
class AccountBinding : public QObject {
    Q_OBJECT
public:
    // The arguments must outlive the binding. The settings sheets are made when they are first
    // shown, as children of `window`.
    AccountBinding(AccountSession& account, StudioSession& studio, AuthGateView* gate,
                   UserAccountButton* button, QWidget* window);

    bool isSheetPresented() const;
    void togglePopover();
    void presentLocalAISettings();

Q_SIGNALS:
    void gateOpened();
    void gateClosed();
    void sheetChanged();
    void appSettingsMade(AppSettingsWindow* settings);
    void textPanelRequested();
    // Both are for the status line while no account screen is open: working() when an action
    // begins, told() with its outcome.
    void working();
    void told(const QString& message, bool isProblem);

private:
    void connectGate();
    void start();
    void refreshWhenActive(Qt::ApplicationState state);
    AccountShown shown() const;
    void show();
    void showGate();
    void tell();
    void closeAccountScreens();
    bool isAccountSeen() const;
    void showSheets();
    AccountSettingsWindow* accountSettings();
    AppSettingsWindow* appSettings();
    template <typename Panel>
    void connectForms(Panel* panel);
    QCoro::Task<> changePassword(QString current, QString password, QString repeated);
    QCoro::Task<> saveProfile(QString fullName);
    QCoro::Task<> loadPurchases();

    AccountSession& m_account;
    StudioSession& m_studio;
    AuthGateView* m_gate;
    UserAccountButton* m_button;
    QWidget* m_window;
    QPointer<AccountPanelView> m_popover;
    QPointer<AccountSettingsWindow> m_accountSettings;
    QPointer<AppSettingsWindow> m_appSettings;
    bool m_didBootstrap = false;
    int m_outcomes = 0;    // AccountSession::outcomes() at the last call of tell()
    bool m_wasWorking = false, m_toldWorking = false;
    bool m_isLoadingPurchases = false;    // the mere end of loading emits no told()
};
