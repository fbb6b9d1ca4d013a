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

// Connects the account with the gate, with its button and popover in the top bar, and with the
// settings. Which of these lies over the window is the studio's state.
class AccountBinding : public QObject {
    Q_OBJECT
public:
    // All outlive it. The sheets belong to the window, and are made when they are first wanted.
    AccountBinding(AccountSession& account, StudioSession& studio, AuthGateView* gate,
                   UserAccountButton* button, QWidget* window);

    bool isSheetPresented() const;
    void togglePopover();

Q_SIGNALS:
    void gateOpened();
    void gateClosed();
    void sheetChanged();
    void textPanelRequested();

private:
    void connectGate();
    void start();
    void refreshWhenActive(Qt::ApplicationState state);
    AccountShown shown() const;
    void show();
    void showGate();
    void showSheets();
    AccountSettingsWindow* accountSettings();
    AppSettingsWindow* appSettings();
    template <typename Panel>
    void connectForms(Panel* panel);
    QCoro::Task<> changePassword(QString current, QString password, QString repeated);

    AccountSession& m_account;
    StudioSession& m_studio;
    AuthGateView* m_gate;
    UserAccountButton* m_button;
    QWidget* m_window;
    QPointer<AccountPanelView> m_popover;
    AccountSettingsWindow* m_accountSettings = nullptr;
    AppSettingsWindow* m_appSettings = nullptr;
    bool m_didBootstrap = false;
};
