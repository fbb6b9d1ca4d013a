#pragma once

#include <QObject>

#include <memory>

class AccountSession;
class Appearance;
class AppSettingsWindow;
class Desktop;
class DesktopNotices;
class EmptyState;
class LocalAIManager;
class PreferencesStore;
class RecentPlaces;
class StatusBinding;
class StudioSession;
class UpdateController;

// Connects the window and its settings with the desktop: theme, notices, updates, recent places,
// and links that are not for the account.
class DesktopBinding : public QObject {
    Q_OBJECT
public:
    // The arguments outlive the binding.
    DesktopBinding(StudioSession& session, AccountSession& account, PreferencesStore& preferences,
                   const StatusBinding& status);
    ~DesktopBinding() override;

    Appearance& appearance() { return *m_appearance; }
    UpdateController& updates() { return *m_updates; }

    // The arguments outlive the binding; first the desktop.
    void follow(const LocalAIManager& manager);
    void follow(Desktop& desktop);
    void showRecent(RecentPlaces& recent, EmptyState* emptyState);
    void connectSettings(AppSettingsWindow* settings);

Q_SIGNALS:
    // The user pressed a notice. `activationToken`: lets the program raise the window.
    void noticePressed(const QByteArray& activationToken);

private:
    void followLinks();

    StudioSession& m_session;
    AccountSession& m_account;
    const StatusBinding& m_status;
    std::unique_ptr<UpdateController> m_updates;
    Appearance* m_appearance;
    DesktopNotices* m_notices = nullptr;    // null without a desktop
};
